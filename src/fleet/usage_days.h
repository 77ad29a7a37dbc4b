#pragma once

#include "cost/cost_figures.h"
#include "cost/prices.h"
#include "cost/usage.h"
#include "foundation/date.h"

#include <map>
#include <string>
#include <vector>

namespace fleetwise {

/// What all sessions together used on one day.
struct UsageDay {
    struct Model {
        std::string name;  ///< as shown, "Opus 5.5"
        TokenTally tally;
        Money api;  ///< by the price book

        bool operator==(const Model&) const = default;
    };

    ::date::year_month_day day;  ///< of the calendar
    std::vector<Model> models;   ///< by name; empty on a day nothing was used

    bool operator==(const UsageDay&) const = default;
};

/// The last `count` days up to that of `now`, each there is, the oldest first. `days` is by the
/// day's name, "2026-11-21".
std::vector<UsageDay> usageDays(const std::map<std::string, ModelTallies, std::less<>>& days,
                                const Prices::Book& book, int count, Date now, Calendar calendar);

}  // namespace fleetwise
