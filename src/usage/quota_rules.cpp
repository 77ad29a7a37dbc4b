// The rules that find windows in measured percentages, each on its own; quota_windows.cpp puts them
// together.

#include "usage/plausible_date.h"
#include "usage/usage_history_store.h"

#include <algorithm>
#include <cmath>
#include <set>

namespace fleetwise {

namespace {

/// After a reset a window stands at this or less.
constexpr int highestStart = 5;
constexpr Seconds shortestElapsed{7'200};
constexpr double hour = 3600;
constexpr double day = 86'400;

bool isReset(int before, int after) {
    return after <= highestStart && before - after >= leastResetDrop;
}

/// Also the first use of a window that stood idle since its reset.
bool beginsWindow(int before, int after) {
    return isReset(before, after) || (before == 0 && after > 0);
}

}  // namespace

std::optional<Date> UsageHistoryStore::windowStart(const QuotaValues& values, Seconds length,
                                                   Date now) {
    std::optional<Date> start;
    for (std::size_t index = 1; index < values.size(); ++index) {
        const auto& [date, percent] = values[index];
        if (isOfFuture(date, now)) break;
        if (beginsWindow(values[index - 1].second, percent)) start = date;
    }
    return start && now - *start < length ? start : std::nullopt;
}

std::optional<Date> UsageHistoryStore::windowEnd(const QuotaValues& values, Seconds length,
                                                 Date now) {
    const auto start = windowStart(values, length, now);
    return start ? std::optional(*start + length) : std::nullopt;
}

std::vector<Date> UsageHistoryStore::resets(const QuotaValues& values) {
    std::vector<Date> dates;
    for (std::size_t index = 1; index < values.size(); ++index) {
        if (isReset(values[index - 1].second, values[index].second)) {
            dates.push_back(values[index].first);
        }
    }
    return dates;
}

std::optional<Date> UsageHistoryStore::nextReset(const QuotaValues& values, Seconds period,
                                                 Date now) {
    std::vector<Date> dates = resets(values);
    while (!dates.empty() && isOfFuture(dates.back(), now))
        dates.pop_back();
    const auto anchor = rhythmus(dates, period, rhythmTolerance);
    if (!anchor) return {};
    Date next = *anchor + std::max(1.0, std::floor((now - *anchor) / period)) * period;
    while (next <= now)
        next += period;
    return next;
}

// Two dates match where their phases within the period are near each other. The phases of all dates
// that lie far enough back are kept in order, so that each date is looked up among them.
std::optional<Date> UsageHistoryStore::rhythmus(const std::vector<Date>& dates, Seconds period,
                                                Seconds toleranz) {
    const double round = period.count();
    const double reach = toleranz.count();
    const double leastDistance = std::max(round - reach, round / 2);
    const auto phaseOf = [&](Date date) { return std::fmod(secondsSince1970(date), round); };
    std::set<double> phases;
    const auto holds = [&](double from, double to) {
        const auto found = phases.lower_bound(from);
        return found != phases.end() && *found <= to;
    };
    std::optional<Date> anchor;
    auto earlier = dates.begin();
    for (const Date date : dates) {
        for (; (date - *earlier).count() >= leastDistance; ++earlier)
            phases.insert(phaseOf(*earlier));
        const double phase = phaseOf(date);
        for (const double turn : {-round, 0.0, round}) {
            if (holds(phase + turn - reach, phase + turn + reach)) anchor = date;
        }
    }
    return anchor;
}

std::optional<UsageHistoryStore::Window::Projection> UsageHistoryStore::projection(int percent,
                                                                                   Date since,
                                                                                   Date until,
                                                                                   Date now) {
    const Seconds elapsed = now - since;
    const Seconds remaining = until - now;
    const Seconds least = std::max(shortestElapsed, (until - since) / 8);
    if (percent <= 0 || remaining <= Seconds(0) || elapsed < least) return {};
    const double rate = percent / (elapsed.count() / hour);
    const double projected = percent + rate * (remaining.count() / hour);
    Window::Projection projection;
    projection.percent = static_cast<int>(std::round(projected));
    if (projected > 100) projection.exhaustedAt = now + Seconds((100 - percent) / rate * hour);
    return projection;
}

std::optional<int> UsageHistoryStore::usedToday(const QuotaValues& values, Date now,
                                                Calendar calendar) {
    const Date midnight = startOfDay(localDay(now, calendar), calendar);
    const auto today =
        std::lower_bound(values.begin(), values.end(), midnight,
                         [](const auto& value, Date date) { return value.first < date; });
    if (today == values.begin() || today == values.end() || isOfFuture(today->first, now)) {
        return {};
    }
    int before = (today - 1)->second;
    int used = 0;
    for (auto value = today; value != values.end() && !isOfFuture(value->first, now); ++value) {
        const int percent = value->second;
        // A fall that is no reset may be a correction, or one from a low figure: only what came
        // after it is certain.
        used += isReset(before, percent) ? percent : std::max(percent - before, 0);
        before = percent;
    }
    return std::min(used, before);
}

std::optional<UsageHistoryStore::Window::DailyBudget> UsageHistoryStore::dailyBudget(
    int percent, std::optional<int> usedToday, std::optional<Date> until, Date now,
    Calendar calendar) {
    if (!usedToday || !until || *until <= now) return {};
    const Date midnight = startOfDay(localDay(now, calendar), calendar);
    const double days = std::max((*until - midnight).count() / day, 1.0);
    return Window::DailyBudget{.perDay = std::max(100 - percent, 0) / days,
                               .usedToday = *usedToday};
}

}  // namespace fleetwise
