#pragma once

#include "foundation/date.h"
#include "usage/quota_series.h"

#include <QPolygonF>

#include <cstddef>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace fleetwise {

// Where things stand in a chart, without painting. Pure functions.

/// Values onto pixels, in proportion. Without a range everything stands at its beginning.
struct LinearScale {
    double low = 0;
    double high = 1;
    double atLow = 0;   ///< pixels
    double atHigh = 1;  ///< pixels; below `atLow` for a scale that grows upwards

    double position(double value) const;
    double value(double position) const;
};

/// From 0 in equal steps of 1, 2 or 5 by powers of ten, at most `most` steps; the last is `highest`
/// or above, and never 0. `smallest` is the least step.
std::vector<double> valueTicks(double highest, std::size_t most, double smallest = 0);

/// As valueTicks, in steps that clocks have: 5 min, 15 min, 1 h, 6 h, …
std::vector<Seconds> durationTicks(Seconds highest, std::size_t most);

/// A place on the time axis: a full hour of the clock or a day's beginning.
struct TimeTick {
    Date date;
    std::string label;  ///< "14:00", and "21.11." where a day begins

    bool operator==(const TimeTick&) const = default;
};

/// At most about `most` ticks within the range, ascending, at hours that do not move from day to
/// day, also where clocks are changed.
std::vector<TimeTick> timeTicks(Date from, Date until, Calendar calendar, std::size_t most);

/// The index of the position nearest to `position`, of ascending ones; the first of equals.
std::optional<std::size_t> nearestIndex(const std::vector<double>& ascending, double position);

/// The stretches without a gap longer than `longestGap`: first index and the one after the last.
std::vector<std::pair<std::size_t, std::size_t>> unbrokenRuns(
    const std::vector<QuotaSeries::Point>& points, Seconds longestGap);

/// A line that looks the same with at most four points for each column of pixels: the first, the
/// lowest, the highest and the last. `line` ascends in x.
QPolygonF reducedToColumns(const QPolygonF& line);

/// A label along an axis.
struct LabelSpan {
    double left = 0;
    double right = 0;
    int rank = 0;  ///< a lower one has the right of way

    bool operator==(const LabelSpan&) const = default;
};

/// Which of the labels can be shown with `gap` between them: by rank, then in order.
std::vector<bool> fittingLabels(const std::vector<LabelSpan>& labels, double gap);

}  // namespace fleetwise
