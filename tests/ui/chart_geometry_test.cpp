// Where things stand in a chart.

#include "ui/charts/chart_geometry.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>

namespace fleetwise::testing {
namespace {

using ::testing::ElementsAre;

const Calendar berlin = ::date::locate_zone("Europe/Berlin");

Date at(const char* text) {
    return parseInternetDate(text).value();
}

std::vector<std::string> labels(const std::vector<TimeTick>& ticks) {
    std::vector<std::string> all;
    for (const TimeTick& tick : ticks)
        all.push_back(tick.label);
    return all;
}

TEST(ChartGeometry, scalesBothWays) {
    const LinearScale upwards{0, 100, 200, 20};
    EXPECT_DOUBLE_EQ(upwards.position(0), 200);
    EXPECT_DOUBLE_EQ(upwards.position(25), 155);
    EXPECT_DOUBLE_EQ(upwards.position(150), -70);
    EXPECT_DOUBLE_EQ(upwards.value(upwards.position(42)), 42);
    EXPECT_DOUBLE_EQ((LinearScale{5, 5, 10, 20}.position(5)), 10) << "no range";
}

TEST(ChartGeometry, hasRoundTicks) {
    struct Case {
        double highest;
        double smallest;
        std::vector<double> ticks;
    };
    const std::vector<Case> cases{
        {0, 1, {0, 1}},          {1, 1, {0, 1}},       {3.4e6, 1, {0, 1e6, 2e6, 3e6, 4e6}},
        {8, 1, {0, 2, 4, 6, 8}}, {8.1, 1, {0, 5, 10}}, {NAN, 1, {0, 1}},
    };
    for (const Case& each : cases)
        EXPECT_EQ(valueTicks(each.highest, 4, each.smallest), each.ticks) << each.highest;
    EXPECT_THAT(durationTicks(Seconds(0), 4), ElementsAre(Seconds(0), Seconds(60)));
    EXPECT_THAT(
        durationTicks(Seconds(3'600), 4),
        ElementsAre(Seconds(0), Seconds(900), Seconds(1'800), Seconds(2'700), Seconds(3'600)));
}

TEST(ChartGeometry, labelsHoursAndDaysOfTheCalendar) {
    EXPECT_THAT(
        labels(timeTicks(at("2026-11-21T15:10:00Z"), at("2026-11-22T06:00:00Z"), berlin, 6)),
        ElementsAre("18:00", "21:00", "22.11.", "03:00", "06:00"));
    EXPECT_THAT(
        labels(timeTicks(at("2026-11-08T12:00:00Z"), at("2026-11-22T12:00:00Z"), berlin, 4)),
        ElementsAre("10.11.", "14.11.", "18.11.", "22.11."));
    EXPECT_TRUE(
        timeTicks(at("2026-11-22T12:00:00Z"), at("2026-11-22T12:00:00Z"), berlin, 4).empty());
}

TEST(ChartGeometry, keepsToTheHoursWhereClocksChange) {
    // 02:00 does not exist in spring and 02:00 comes twice in autumn.
    EXPECT_THAT(
        labels(timeTicks(at("2026-03-28T23:00:00Z"), at("2026-03-29T10:00:00Z"), berlin, 5)),
        ElementsAre("29.03.", "03:00", "06:00", "09:00", "12:00"));
    const auto autumn =
        timeTicks(at("2026-10-24T22:00:00Z"), at("2026-10-25T11:00:00Z"), berlin, 5);
    EXPECT_THAT(labels(autumn), ElementsAre("25.10.", "03:00", "06:00", "09:00", "12:00"));
    EXPECT_EQ(autumn[1].date, at("2026-10-25T02:00:00Z"));
}

TEST(ChartGeometry, findsTheNearest) {
    const std::vector<double> positions{0, 10, 10, 30};
    EXPECT_FALSE(nearestIndex({}, 3));
    const std::vector<std::pair<double, std::size_t>> cases{{-5, 0}, {4.9, 0}, {5, 0},  {5.1, 1},
                                                            {10, 1}, {20, 1},  {21, 3}, {99, 3}};
    for (const auto& [position, index] : cases)
        EXPECT_EQ(nearestIndex(positions, position), index) << position;
}

TEST(ChartGeometry, breaksTheLineWhereNothingWasMeasured) {
    const Date start = dateFromSeconds(0);
    const std::vector<QuotaSeries::Point> points{
        {start, 1}, {start + Seconds(1'800), 2}, {start + Seconds(3'601), 3}};
    using Run = std::pair<std::size_t, std::size_t>;
    EXPECT_THAT(unbrokenRuns(points, Seconds(1'800)), ElementsAre(Run(0, 2), Run(2, 3)));
    EXPECT_TRUE(unbrokenRuns({}, Seconds(1'800)).empty());
}

TEST(ChartGeometry, reducesToPixelColumnsWithoutLosingPeaks) {
    QPolygonF line;
    for (int index = 0; index < 10'000; ++index)
        line << QPointF(index / 100.0, index % 100 == 50 ? 99 : index % 7);
    const QPolygonF reduced = reducedToColumns(line);
    EXPECT_LE(reduced.size(), 400);
    EXPECT_EQ(reduced.boundingRect(), line.boundingRect());
    EXPECT_EQ(std::count_if(reduced.begin(), reduced.end(),
                            [](const QPointF& point) { return point.y() == 99; }),
              100);
    EXPECT_TRUE(std::is_sorted(
        reduced.begin(), reduced.end(),
        [](const QPointF& left, const QPointF& right) { return left.x() < right.x(); }));
    const QPolygonF few{{QPointF(0, 1), QPointF(0.5, 1), QPointF(3, 2)}};
    EXPECT_EQ(reducedToColumns(few), few);
}

TEST(ChartGeometry, leavesOutLabelsThatOverlap) {
    const std::vector<LabelSpan> spans{{0, 10, 1}, {15, 25, 1}, {22, 32, 0}, {40, 50, 1}};
    EXPECT_EQ(fittingLabels(spans, 4), (std::vector<bool>{true, false, true, true}));
    EXPECT_EQ(fittingLabels(spans, 9), (std::vector<bool>{true, false, true, false}));
}

}  // namespace
}  // namespace fleetwise::testing
