#include "fleet/usage_days.h"

#include "cost/session_cost.h"
#include "localisation/localisation.h"
#include "session/model_name.h"

#include <fmt/format.h>

#include <algorithm>

namespace fleetwise {

namespace {

void add(UsageDay& day, const std::string& model, const TokenTally& tally,
         const Prices::Book& book) {
    if (tally.all() == 0) return;
    ModelSlices slices;
    slices[model].tally = tally;
    const Money api = figuresOf(slices, book).api;
    std::string name = displayModelName(model);
    if (name.empty()) name = localised("Ohne Modell"_text);
    const auto known = std::ranges::find(day.models, name, &UsageDay::Model::name);
    if (known == day.models.end()) {
        day.models.push_back({.name = name, .tally = tally, .api = api});
        return;
    }
    known->tally += tally;
    known->api += api;
}

}  // namespace

std::vector<UsageDay> usageDays(const std::map<std::string, ModelTallies, std::less<>>& days,
                                const Prices::Book& book, int count, Date now, Calendar calendar) {
    std::vector<UsageDay> result;
    const ::date::local_days today = localDay(now, calendar);
    for (int back = std::max(count, 0) - 1; back >= 0; --back) {
        const ::date::local_days local = today - ::date::days(back);
        UsageDay day{.day = ::date::year_month_day(local), .models = {}};
        if (const auto used = days.find(dayName(local)); used != days.end()) {
            for (const auto& [model, tally] : used->second)
                add(day, model, tally, book);
        }
        std::ranges::sort(day.models, {}, &UsageDay::Model::name);
        result.push_back(std::move(day));
    }
    return result;
}

}  // namespace fleetwise
