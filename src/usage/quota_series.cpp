#include "usage/quota_series.h"

#include "usage/plausible_date.h"
#include "usage/usage_history_store.h"

namespace fleetwise {

QuotaSeries quotaSeries(const QuotaValues& values, const std::optional<QuotaWindow>& window,
                        Date since, Date now) {
    const auto isShown = [&](Date date) { return date >= since && !isOfFuture(date, now); };
    QuotaSeries series;
    for (const auto& [date, percent] : values) {
        if (isShown(date)) series.points.push_back({.date = date, .percent = percent});
    }
    for (const Date reset : UsageHistoryStore::resets(values)) {
        if (isShown(reset)) series.resets.push_back(reset);
    }
    if (!window) return series;
    series.windowStart = window->windowStartsAt;
    series.windowEnd = window->windowEndsAt;
    // From a figure that is out of date the way to the end is not known.
    if (window->projection && window->windowEndsAt && !window->isStale) {
        series.projection =
            QuotaSeries::Tail{.from = now,
                              .fromPercent = static_cast<double>(window->percent),
                              .until = *window->windowEndsAt,
                              .untilPercent = static_cast<double>(window->projection->percent)};
    }
    return series;
}

}  // namespace fleetwise
