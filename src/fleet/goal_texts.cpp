#include "fleet/goal_texts.h"

#include "localisation/localisation.h"
#include "localisation/money_format.h"
#include "localisation/number_format.h"

#include <fmt/format.h>

#include <cmath>
#include <vector>

namespace fleetwise {

namespace {

/// Rounded down, so that 100 % is said of what is reached only.
int wholePercent(double share) {
    return static_cast<int>(std::floor(share * 100));
}

std::string joined(const std::vector<std::string>& parts, std::string_view separator) {
    std::string text;
    for (const std::string& part : parts) {
        if (part.empty()) continue;
        if (!text.empty()) text += separator;
        text += part;
    }
    return text;
}

/// "30 %", "2,5 %".
std::string percentText(double percent) {
    constexpr double most = 1e9;
    const std::int64_t tenths = std::llround(std::min(percent, most) * 10);
    if (tenths % 10 == 0) return localisedFormat("%@ %%"_text, groupedNumber(tenths / 10));
    return localisedFormat("%@ %%"_text, fixedNumber(tenths, 1));
}

}  // namespace

std::string goalStatusText(GoalStore::Status status) {
    switch (status) {
        case GoalStore::Status::active:
            return localised("aktiv"_text);
        case GoalStore::Status::paused:
            return localised("angehalten"_text);
        case GoalStore::Status::blocked:
            return localised("blockiert"_text);
        case GoalStore::Status::usageLimited:
            return localised("am Kontingent"_text);
        case GoalStore::Status::budgetLimited:
            return localised("Budget verbraucht"_text);
        case GoalStore::Status::complete:
            break;
    }
    return localised("erreicht"_text);
}

std::string goalProgressText(const GoalStore::Goal& goal) {
    if (const auto share = goal.share()) {
        return localisedFormat("%d %% von %@ Token"_text, wholePercent(*share),
                               groupedNumber(*goal.tokenBudget));
    }
    if (goal.tokensUsed <= 0) return {};
    return localisedFormat("%@ Token"_text, groupedNumber(goal.tokensUsed));
}

std::string goalText(const GoalStore::Goal& goal) {
    const bool isActive = goal.status == GoalStore::Status::active;
    return joined({goal.displayObjective(), isActive ? std::string() : goalStatusText(goal.status),
                   goalProgressText(goal)},
                  " · ");
}

std::string goalLimitsText(const OwnGoals::Entry& entry) {
    std::vector<std::string> limits;
    if (entry.costLimitUSD) limits.push_back(moneyText(*entry.costLimitUSD));
    if (entry.windowShareLimit) {
        limits.push_back(localisedFormat("%@ des 5-Stunden-Fensters"_text,
                                         percentText(*entry.windowShareLimit)));
    }
    if (entry.tokenBudget) {
        limits.push_back(localisedFormat("%@ Token"_text, groupedNumber(*entry.tokenBudget)));
    }
    if (limits.empty()) return {};
    return localisedFormat("höchstens %@"_text, joined(limits, ", "));
}

}  // namespace fleetwise
