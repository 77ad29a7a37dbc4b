#include "fleet/usage_tables.h"

#include "cost/session_cost.h"
#include "fleet/cost_texts.h"
#include "localisation/localisation.h"
#include "localisation/money_format.h"
#include "localisation/number_format.h"
#include "session/model_name.h"

#include <algorithm>
#include <map>
#include <utility>

namespace fleetwise {

namespace {

std::string modelName(const std::string& id) {
    std::string name = displayModelName(id);
    return name.empty() ? localised("Ohne Modell"_text) : name;
}

ModelSlices slicesOf(const ModelTallies& used) {
    ModelSlices slices;
    for (const auto& [model, tally] : used)
        slices[model].tally = tally;
    return slices;
}

std::vector<UsageShare> ranked(std::vector<UsageShare> shares, UsageFigure figure) {
    std::erase_if(shares, [](const UsageShare& share) { return share.tally.all() == 0; });
    std::ranges::stable_sort(shares, [figure](const UsageShare& left, const UsageShare& right) {
        return amountOf(left, figure) > amountOf(right, figure);
    });
    return shares;
}

bool hasUsed(const Usage& usage, std::string_view first) {
    return first.empty() ? usage.requests() > 0 : usage.days.lower_bound(first) != usage.days.end();
}

void addHeadings(FigureTable& table, UsageColumns columns) {
    if (columns.tokens) {
        for (const Text heading : {"Eingabe"_text, "Ausgabe"_text, "Cache gelesen"_text,
                                   "Cache geschrieben"_text, "Tokens"_text})
            table.headings.push_back(localised(heading));
    }
    if (columns.money) table.headings.push_back(localised("Kosten in US-Dollar"_text));
}

void addFigures(FigureTable::Row& row, const UsageShare& share, UsageColumns columns) {
    if (columns.tokens) {
        const TokenTally& tally = share.tally;
        for (const std::int64_t count :
             {tally.input, tally.output, tally.cacheRead, tally.cacheWrites(), tally.all()})
            row.push_back(countCell(count));
    }
    if (columns.money) row.push_back(moneyCell(share.api));
}

}  // namespace

FigureTable::Cell countCell(std::int64_t count) {
    return {.text = groupedNumber(count), .number = static_cast<double>(count)};
}

FigureTable::Cell moneyCell(const Money& money) {
    return {.text = costText(money), .number = money.usd};
}

double amountOf(const UsageShare& share, UsageFigure figure) {
    if (figure == UsageFigure::money) return std::max(0.0, share.api.usd.value_or(0));
    return static_cast<double>(share.tally.all());
}

std::string amountText(double amount, UsageFigure figure) {
    return figure == UsageFigure::money ? moneyText(amount)
                                        : shortNumber(static_cast<std::int64_t>(amount));
}

std::vector<UsageShare> usageByModel(const ModelTallies& used, const Prices::Book& book,
                                     UsageFigure figure) {
    std::map<std::string, UsageShare> byName;
    for (const auto& [model, tally] : used) {
        if (tally.all() == 0) continue;
        UsageShare& share = byName[modelName(model)];
        share.tally += tally;
        share.api += figuresOf(slicesOf({{model, tally}}), book).api;
    }
    std::vector<UsageShare> shares;
    for (auto& [name, share] : byName) {
        share.key = name;
        shares.push_back(std::move(share));
    }
    return ranked(std::move(shares), figure);
}

std::vector<UsageShare> usageByProject(
    const UsageSources& sources, std::string_view first,
    const std::function<ModelTallies(const std::vector<std::string>& ids)>& used,
    const Prices::Book& book, UsageFigure figure) {
    const UsageDirectory directory(sources);
    std::map<std::string, std::vector<std::string>> byFolder;
    for (const auto& [id, cost] : sources.costs)
        byFolder[directory.folder(id)].push_back(id);
    std::vector<UsageShare> shares;
    for (const auto& [folder, ids] : byFolder) {
        const ModelTallies tallies = used(ids);
        UsageShare share{.key = folder};
        for (const auto& [model, tally] : tallies)
            share.tally += tally;
        share.api = figuresOf(slicesOf(tallies), book).api;
        share.sessions =
            static_cast<std::size_t>(std::ranges::count_if(ids, [&](const std::string& id) {
                return !directory.isPartOfAnother(id) &&
                       hasUsed(sources.costs.find(id)->second->usage, first);
            }));
        shares.push_back(std::move(share));
    }
    return ranked(std::move(shares), figure);
}

FigureTable modelUsageTable(const std::vector<UsageShare>& shares, UsageColumns columns) {
    FigureTable table{.title = localised("Verbrauch je Modell"_text),
                      .headings = {localised("Modell"_text)}};
    addHeadings(table, columns);
    for (const UsageShare& share : shares) {
        FigureTable::Row row{{.text = share.key}};
        addFigures(row, share, columns);
        table.rows.push_back(std::move(row));
    }
    return table;
}

FigureTable projectUsageTable(const std::vector<UsageShare>& shares, UsageColumns columns,
                              const ProjectNames& names) {
    FigureTable table{.title = localised("Verbrauch je Projekt"_text),
                      .headings = {localised("Projekt"_text), localised("Sitzungen"_text)}};
    addHeadings(table, columns);
    for (const UsageShare& share : shares) {
        FigureTable::Row row{{.text = names.path(share.key)},
                             countCell(static_cast<std::int64_t>(share.sessions))};
        addFigures(row, share, columns);
        table.rows.push_back(std::move(row));
    }
    return table;
}

}  // namespace fleetwise
