#pragma once

#include "usage/quota_window.h"
#include "usage/usage_sample.h"

#include <optional>
#include <vector>

namespace fleetwise {

/// One window's measured course, for a chart.
struct QuotaSeries {
    struct Point {
        Date date;
        int percent = 0;

        bool operator==(const Point&) const = default;
    };
    /// The expected course from now to the window's end.
    struct Tail {
        Date from;
        double fromPercent = 0;
        Date until;
        double untilPercent = 0;

        bool operator==(const Tail&) const = default;
    };

    std::vector<Point> points;  ///< ascending by date, within the chart
    std::vector<Date> resets;   ///< moments at which the percentage fell to its start
    std::optional<Date> windowStart;
    std::optional<Date> windowEnd;
    std::optional<Tail> projection;

    bool operator==(const QuotaSeries&) const = default;
};

/// The values from `since` on, of an account, with what `window` (the one they led to) adds.
QuotaSeries quotaSeries(const QuotaValues& values, const std::optional<QuotaWindow>& window,
                        Date since, Date now);

}  // namespace fleetwise
