#include "quota_samples.h"
#include "usage/usage_history_store.h"

#include <gmock/gmock.h>

namespace fleetwise::testing {
namespace {

using Store = UsageHistoryStore;
using ::testing::ElementsAre;

TEST(QuotaRules, aWindowStartsWithADropOrItsFirstUse) {
    struct Row {
        const char* name;
        QuotaValues values;
        double now;
        std::optional<double> end;
    };
    const Row rows[] = {
        {"no values", {}, 0, {}},
        {"a drop of ten to five", values({{-60, 15}, {0, 5}}), 0, 18'000},
        {"a drop of nine", values({{-60, 14}, {0, 5}}), 0, {}},
        {"a drop to six", values({{-60, 90}, {0, 6}}), 0, {}},
        {"a rise from zero", values({{-60, 0}, {0, 1}}), 0, 18'000},
        {"a rise from one", values({{-60, 1}, {0, 60}}), 0, {}},
        {"zero and zero", values({{-60, 0}, {0, 0}}), 0, {}},
        {"the last start counts", values({{-9'000, 50}, {-8'000, 0}, {-7'000, 4}}), 0, 11'000},
        {"a second before its end", values({{-60, 50}, {0, 0}}), 17'999, 18'000},
        {"at its end", values({{-60, 50}, {0, 0}}), 18'000, {}},
        {"a start of the future", values({{0, 50}, {61, 0}}), 0, {}},
        {"within the clock's tolerance", values({{0, 50}, {60, 0}}), 0, 18'060},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(fromNoon(Store::windowEnd(row.values, fiveHours, at(row.now))), row.end)
            << row.name;
    }
}

TEST(QuotaRules, resetsARoundNumberOfPeriodsApartTellTheNext) {
    constexpr double week = 7 * day;
    struct Row {
        const char* name;
        std::vector<double> resets;
        double now;
        std::optional<double> next;
    };
    const Row rows[] = {
        {"one is not enough", {-day}, 0, {}},
        {"a week apart", {-8 * day, -day}, 0, 6 * day},
        {"twelve hours late", {-8 * day, -day + 12 * hour}, 0, 6.5 * day},
        {"a second later still", {-8 * day, -day + 12 * hour + 1}, 0, {}},
        {"twelve hours early", {-8 * day, -day - 12 * hour}, 0, 5.5 * day},
        {"a second earlier still", {-8 * day, -day - 12 * hour - 1}, 0, {}},
        {"three weeks apart, the odd one between them", {-3 * week, -day, 0}, 0, week},
        {"the later of the latest pair", {-3 * week, -2 * week, -week + hour, -day}, 0, hour},
        {"too near to be a week", {-hour, 0}, 0, {}},
        {"now is a reset", {-2 * week, -week}, 0, week},
        {"a second before", {-2 * week, -week}, -1, 0},
        {"one of the future", {-week, 61}, 0, {}},
    };
    for (const Row& row : rows) {
        QuotaValues seen;
        for (const double reset : row.resets) {
            seen.emplace_back(at(reset - 1), 60);
            seen.emplace_back(at(reset), 5);
        }
        EXPECT_EQ(fromNoon(Store::nextReset(seen, sevenDays, at(row.now))), row.next) << row.name;
    }
    EXPECT_THAT(Store::resets(values({{0, 15}, {1, 5}, {2, 14}, {3, 5}, {4, 30}, {5, 6}})),
                ElementsAre(at(1)));
}

TEST(QuotaRules, aProjectionWaitsForItsMinimum) {
    struct Row {
        const char* name;
        int percent;
        double length;
        double elapsed;
        std::optional<int> projected;
        std::optional<double> exhaustedAt;
    };
    const Row rows[] = {
        {"a second before two hours", 40, 5 * hour, 2 * hour - 1, {}, {}},
        {"two hours", 40, 5 * hour, 2 * hour, 100, {}},
        {"over 100", 41, 5 * hour, 2 * hour, 103, 59 * 2 * hour / 41},
        {"a second before 21 hours", 10, 7 * day, 21 * hour - 1, {}, {}},
        {"21 hours", 10, 7 * day, 21 * hour, 80, {}},
        {"halves are rounded up", 5, 5 * hour, 2 * hour, 13, {}},
        {"nothing used", 0, 5 * hour, 3 * hour, {}, {}},
        {"at the end", 50, 5 * hour, 5 * hour, {}, {}},
    };
    for (const Row& row : rows) {
        const Date since = at(-row.elapsed);
        const auto got = Store::projection(row.percent, since, since + Seconds(row.length), noon);
        ASSERT_EQ(got.has_value(), row.projected.has_value()) << row.name;
        if (!got) continue;
        EXPECT_EQ(got->percent, *row.projected) << row.name;
        ASSERT_EQ(got->exhaustedAt.has_value(), row.exhaustedAt.has_value()) << row.name;
        if (got->exhaustedAt) {
            EXPECT_NEAR(*fromNoon(got->exhaustedAt), *row.exhaustedAt, 1e-3) << row.name;
        }
    }
}

TEST(QuotaRules, todayBeginsAtMidnight) {
    const Calendar utc = ::date::locate_zone("Etc/UTC");
    constexpr double midnight = -12 * hour;
    struct Row {
        const char* name;
        QuotaValues values;
        std::optional<int> used;
    };
    const Row rows[] = {
        {"since the last value before", values({{midnight - 1, 20}, {midnight, 22}, {0, 30}}), 10},
        {"none from before", values({{midnight, 22}, {0, 30}}), {}},
        {"none of today", values({{midnight - 2, 22}, {midnight - 1, 30}}), {}},
        {"across a reset", values({{midnight - 1, 50}, {-hour, 55}, {-60, 2}, {0, 9}}), 9},
        {"no more than there is", values({{midnight - 1, 5}, {-hour, 90}, {-60, 0}, {0, 40}}), 40},
        {"a correction", values({{midnight - 1, 50}, {-60, 47}}), 0},
        {"a reset too small to be sure", values({{midnight - 1, 8}, {-60, 0}, {0, 5}}), 5},
        {"the future", values({{midnight - 1, 8}, {-60, 10}, {61, 50}}), 2},
    };
    for (const Row& row : rows)
        EXPECT_EQ(Store::usedToday(row.values, noon, utc), row.used) << row.name;
}

TEST(QuotaRules, theBudgetCountsDaysOfTheCalendar) {
    struct Row {
        const char* name;
        const char* zone;
        const char* now;
        const char* until;
        int percent;
        std::optional<double> days;  ///< none: no budget
    };
    const Row rows[] = {
        {"three and a half", "Etc/UTC", "2026-11-22T09:00:00Z", "2026-11-25T12:00:00Z", 30, 3.5},
        {"on the day of the reset", "Etc/UTC", "2026-11-22T09:00:00Z", "2026-11-22T12:00:00Z", 30,
         1},
        {"over the quota", "Etc/UTC", "2026-11-22T09:00:00Z", "2026-11-25T12:00:00Z", 130, 3.5},
        {"the reset is now", "Etc/UTC", "2026-11-22T09:00:00Z", "2026-11-22T09:00:00Z", 30, {}},
        {"an hour is skipped", "Europe/Berlin", "2026-03-29T10:00:00Z", "2026-03-31T22:00:00Z", 0,
         71.0 / 24},
        {"an hour comes twice", "Europe/Berlin", "2026-10-25T10:00:00Z", "2026-10-27T23:00:00Z", 0,
         73.0 / 24},
        {"likewise", "America/New_York", "2026-11-01T12:00:00Z", "2026-11-03T05:00:00Z", 0,
         49.0 / 24},
        {"half an hour off", "Asia/Kolkata", "2026-11-21T18:30:00Z", "2026-11-23T18:30:00Z", 0, 2},
        {"a second before that midnight", "Asia/Kolkata", "2026-11-21T18:29:59Z",
         "2026-11-23T18:30:00Z", 0, 3},
    };
    for (const Row& row : rows) {
        const Date now = *parseInternetDate(row.now);
        const Date until = *parseInternetDate(row.until);
        const Calendar calendar = ::date::locate_zone(row.zone);
        const auto budget = Store::dailyBudget(row.percent, 7, until, now, calendar);
        ASSERT_EQ(budget.has_value(), row.days.has_value()) << row.name;
        if (!budget) continue;
        EXPECT_NEAR(budget->perDay, std::max(100 - row.percent, 0) / *row.days, 1e-9) << row.name;
        EXPECT_EQ(budget->usedToday, 7) << row.name;
        EXPECT_FALSE(Store::dailyBudget(row.percent, {}, until, now, calendar)) << row.name;
        EXPECT_FALSE(Store::dailyBudget(row.percent, 7, {}, now, calendar)) << row.name;
    }
}

}  // namespace
}  // namespace fleetwise::testing
