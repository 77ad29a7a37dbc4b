#pragma once

#include "cost/cost_figures.h"
#include "cost/prices.h"
#include "cost/usage.h"
#include "fleet/figure_table.h"
#include "fleet/project_names.h"
#include "fleet/usage_sources.h"

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace fleetwise {

/// What is told of use.
enum class UsageFigure {
    tokens,
    money,  ///< by the price book, in US dollars
};

/// What one model was used for, or what was used in one project.
struct UsageShare {
    std::string key;  ///< the model's name as shown, or the project's folder; may be empty
    TokenTally tally;
    Money api;                 ///< by the price book
    std::size_t sessions = 0;  ///< of a project: those that used anything

    bool operator==(const UsageShare&) const = default;
};

/// Cells of a table.
FigureTable::Cell countCell(std::int64_t count);
FigureTable::Cell moneyCell(const Money& money);

/// All tokens, or the amount; not below 0.
double amountOf(const UsageShare& share, UsageFigure figure);
/// Such an amount in words.
std::string amountText(double amount, UsageFigure figure);

/// By the models' shown names, without those that used nothing; the largest first.
std::vector<UsageShare> usageByModel(const ModelTallies& used, const Prices::Book& book,
                                     UsageFigure figure);

/// By folder, from the day `first` on or, where that is empty, ever; without those in which nothing
/// was used; the largest first. `used` gives what some sessions used together since then. What
/// forks copied from each other counts once within a project; where they are in different ones it
/// counts in each, so the projects may come to more than the whole.
std::vector<UsageShare> usageByProject(
    const UsageSources& sources, std::string_view first,
    const std::function<ModelTallies(const std::vector<std::string>& ids)>& used,
    const Prices::Book& book, UsageFigure figure);

/// Which columns tables of use have.
struct UsageColumns {
    bool tokens = true;
    bool money = true;

    bool any() const { return tokens || money; }
    bool operator==(const UsageColumns&) const = default;
};

FigureTable modelUsageTable(const std::vector<UsageShare>& shares, UsageColumns columns);
FigureTable projectUsageTable(const std::vector<UsageShare>& shares, UsageColumns columns,
                              const ProjectNames& names);

}  // namespace fleetwise
