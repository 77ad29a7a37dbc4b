#include "ui/charts/chart_geometry.h"

#include "localisation/day_format.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numeric>

namespace fleetwise {

namespace {

/// Steps of whole hours, the last ones of days.
constexpr std::array<int, 10> hourSteps{1, 2, 3, 6, 12, 24, 48, 96, 168, 336};
constexpr int hoursOfDay = 24;

constexpr std::array<double, 14> durationSteps{
    60,        300,        900,        1'800,      3'600,       2 * 3'600.0, 3 * 3'600.0,
    6 * 3'600, 12 * 3'600, 24 * 3'600, 48 * 3'600, 120 * 3'600, 240 * 3'600, 600 * 3'600};

double niceStep(double atLeast) {
    const double power = std::pow(10, std::floor(std::log10(atLeast)));
    for (const double factor : {1.0, 2.0, 5.0}) {
        if (factor * power >= atLeast * (1 - 1e-9)) return factor * power;
    }
    return 10 * power;
}

std::vector<double> ticksUpTo(double highest, double step) {
    std::vector<double> ticks;
    const auto count = static_cast<int>(std::max(1.0, std::ceil(highest / step - 1e-9)));
    ticks.reserve(static_cast<std::size_t>(count) + 1);
    for (int index = 0; index <= count; ++index)
        ticks.push_back(step * index);
    return ticks;
}

std::string tickLabel(Date date, Calendar calendar, int hour) {
    return hour == 0 ? shortDayText(formatDate(date, calendar, "%Y-%m-%d"))
                     : formatDate(date, calendar, "%H:%M");
}

}  // namespace

double LinearScale::position(double value) const {
    if (!(high > low)) return atLow;
    return atLow + (value - low) / (high - low) * (atHigh - atLow);
}

double LinearScale::value(double position) const {
    if (atHigh == atLow) return low;
    return low + (position - atLow) / (atHigh - atLow) * (high - low);
}

std::vector<double> valueTicks(double highest, std::size_t most, double smallest) {
    if (!(highest > 0) || !std::isfinite(highest)) highest = std::max(smallest, 1.0);
    const double atLeast = highest / static_cast<double>(std::max<std::size_t>(most, 1));
    return ticksUpTo(highest, niceStep(std::max(atLeast, smallest)));
}

std::vector<Seconds> durationTicks(Seconds highest, std::size_t most) {
    const double atLeast = highest.count() / static_cast<double>(std::max<std::size_t>(most, 1));
    const auto* fitting = std::ranges::lower_bound(durationSteps, atLeast);
    const double step = fitting != durationSteps.end() ? *fitting : niceStep(atLeast);
    std::vector<Seconds> ticks;
    for (const double tick : ticksUpTo(highest.count(), step))
        ticks.emplace_back(tick);
    return ticks;
}

std::vector<TimeTick> timeTicks(Date from, Date until, Calendar calendar, std::size_t most) {
    std::vector<TimeTick> ticks;
    if (!(from < until)) return ticks;
    const double hours =
        (until - from).count() / 3'600 / static_cast<double>(std::max<std::size_t>(most, 1));
    const auto* fitting = std::ranges::lower_bound(hourSteps, hours);
    const int step = fitting != hourSteps.end() ? *fitting : hourSteps.back();
    const int dayStep = std::max(1, step / hoursOfDay);
    // Days are counted from the last: the tick nearest to the present is a day's beginning.
    const ::date::local_days last = localDay(until, calendar);
    const auto firstCount = (last - localDay(from, calendar)).count() / dayStep * dayStep;
    for (auto day = last - ::date::days(firstCount); day <= last; day += ::date::days(dayStep)) {
        for (int hour = 0; hour < hoursOfDay; hour += std::min(step, hoursOfDay)) {
            const auto local = day + std::chrono::hours(hour);
            const Date date = hour == 0 ? startOfDay(day, calendar)
                                        : Date(calendar->to_sys(local, ::date::choose::earliest));
            const bool isNew = ticks.empty() || ticks.back().date < date;
            if (date < from || date > until || !isNew) continue;
            ticks.push_back({date, tickLabel(date, calendar, hour)});
        }
    }
    return ticks;
}

std::optional<std::size_t> nearestIndex(const std::vector<double>& ascending, double position) {
    if (ascending.empty()) return {};
    const auto after = std::ranges::lower_bound(ascending, position);
    auto nearest = after;
    if (after == ascending.end() ||
        (after != ascending.begin() && position - *(after - 1) <= *after - position)) {
        nearest = std::ranges::lower_bound(ascending, *(after - 1));
    }
    return static_cast<std::size_t>(nearest - ascending.begin());
}

std::vector<std::pair<std::size_t, std::size_t>> unbrokenRuns(
    const std::vector<QuotaSeries::Point>& points, Seconds longestGap) {
    std::vector<std::pair<std::size_t, std::size_t>> runs;
    std::size_t first = 0;
    for (std::size_t index = 1; index <= points.size(); ++index) {
        const bool ends =
            index == points.size() || points[index].date - points[index - 1].date > longestGap;
        if (!ends) continue;
        runs.emplace_back(first, index);
        first = index;
    }
    return runs;
}

QPolygonF reducedToColumns(const QPolygonF& line) {
    QPolygonF reduced;
    for (auto first = line.begin(); first != line.end();) {
        const double column = std::floor(first->x());
        const auto after = std::find_if(first, line.end(), [column](const QPointF& point) {
            return std::floor(point.x()) != column;
        });
        auto [low, high] = std::minmax_element(
            first, after,
            [](const QPointF& left, const QPointF& right) { return left.y() < right.y(); });
        if (high < low) std::swap(low, high);
        auto added = line.end();
        for (const auto point : {first, low, high, after - 1}) {
            if (point != added) reduced << *point;
            added = point;
        }
        first = after;
    }
    return reduced;
}

std::vector<bool> fittingLabels(const std::vector<LabelSpan>& labels, double gap) {
    std::vector<std::size_t> order(labels.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::ranges::stable_sort(order, {}, [&](std::size_t index) { return labels[index].rank; });
    std::vector<bool> fits(labels.size());
    for (const std::size_t index : order) {
        bool isFree = true;
        for (std::size_t other = 0; other < labels.size() && isFree; ++other) {
            isFree = !fits[other] || labels[index].left >= labels[other].right + gap ||
                     labels[other].left >= labels[index].right + gap;
        }
        fits[index] = isFree;
    }
    return fits;
}

}  // namespace fleetwise
