#include "quota_samples.h"
#include "usage/quota_series.h"
#include "usage/usage_history_store.h"

#include <gmock/gmock.h>

namespace fleetwise::testing {
namespace {

using Store = UsageHistoryStore;
using Notice = QuotaNotice::Notice;

const Calendar utc = ::date::locate_zone("Etc/UTC");

QuotaWindow fiveHour(const QuotaValues& from, double now = 0, const ToldWindowEnds& told = {},
                     const std::optional<Notice>& notice = {}) {
    const auto window = Store::fiveHourWindow(samplesOf(from), at(now), notice, utc, told);
    return window.value_or(QuotaWindow());
}

TEST(QuotaWindows, theFiveHourWindowAtAMoment) {
    const auto course = values(
        {{-4 * hour, 80}, {-3 * hour, 2}, {-hour, 40}, {-30 * minute, 46}, {0, 50}, {61, 99}});
    const QuotaWindow window = fiveHour(course);
    EXPECT_EQ(window.title, "5-Stunden-Fenster");
    EXPECT_EQ(window.percent, 50);
    EXPECT_EQ(window.peak, 50);
    EXPECT_EQ(window.measuredAt, noon);
    EXPECT_EQ(window.ratePerHour, 10);
    EXPECT_EQ(fromNoon(window.windowStartsAt), -3 * hour);
    EXPECT_EQ(fromNoon(window.windowEndsAt), 2 * hour);
    EXPECT_EQ(window.resetsAt, window.windowEndsAt);
    ASSERT_TRUE(window.projection);
    EXPECT_EQ(window.projection->percent, 83);
    EXPECT_FALSE(window.saturatesAt) << "behind the end";
    EXPECT_FALSE(window.dailyBudget);
    EXPECT_FALSE(window.dayDelta);
    EXPECT_FALSE(Store::fiveHourWindow({}, noon, {}, utc));
    EXPECT_FALSE(Store::fiveHourWindow(samplesOf(values({{61, 4}})), noon, {}, utc));
}

TEST(QuotaWindows, rateAndStalenessHaveTheirBounds) {
    struct Row {
        const char* name;
        QuotaValues values;
        double now;
        bool isStale;
        std::optional<double> rate;
    };
    const auto rising = values({{-3'600, 10}, {0, 16}});
    const Row rows[] = {
        {"an hour", rising, 0, false, 6},
        {"the first value is too old", rising, 1, false, {}},
        {"fifteen minutes", values({{-600, 1}, {0, 2}}), 900, false, 6},
        {"a second more", values({{-600, 1}, {0, 2}}), 901, true, {}},
        {"six minutes apart", values({{-360, 1}, {0, 9}}), 0, false, {}},
        {"a second more apart", values({{-361, 1}, {0, 9}}), 0, false, 8 * 3600 / 361.0},
        {"no rise", values({{-1'800, 9}, {0, 9}}), 0, false, {}},
        {"a reset between", values({{-1'800, 9}, {-900, 50}, {-600, 2}, {0, 12}}), 0, false, {}},
    };
    for (const Row& row : rows) {
        const QuotaWindow window = fiveHour(row.values, row.now);
        EXPECT_EQ(window.isStale, row.isStale) << row.name;
        EXPECT_EQ(window.ratePerHour, row.rate) << row.name;
    }
    const auto week = samplesOf(values({{0, 4}}), true);
    EXPECT_FALSE(Store::sevenDayWindow(week, at(30'240), utc)->isStale);
    EXPECT_TRUE(Store::sevenDayWindow(week, at(30'241), utc)->isStale);
}

TEST(QuotaWindows, saturationLiesWithinTheWindow) {
    // The window ends in two hours.
    const auto saturation = [](int before, int percent) {
        return fromNoon(
            fiveHour(values({{-3 * hour - 60, 30}, {-3 * hour, 1}, {-hour, before}, {0, percent}}))
                .saturatesAt);
    };
    EXPECT_EQ(saturation(40, 70), hour);
    EXPECT_EQ(saturation(10, 40), 2 * hour);
    EXPECT_EQ(saturation(10, 39), std::nullopt);
    EXPECT_EQ(saturation(98, 99), hour) << "one point an hour is enough";
    EXPECT_EQ(saturation(70, 100), std::nullopt);
}

TEST(QuotaWindows, endsComeFromWhoeverKnowsBest) {
    const auto fresh = values({{-2 * hour, 60}, {-hour, 1}, {0, 20}});      // derived: 4 h
    const auto idle = values({{-6 * hour, 20}, {-4 * hour, 40}, {0, 50}});  // derived: none
    const auto small = values({{-3 * hour, 0}, {-2 * hour, 8}, {0, 9}});    // derived: 3 h
    const auto told = [](double toldAt, double end) {
        return ToldWindowEnds{.toldAt = at(toldAt), .fiveHour = at(end), .sevenDay = {}};
    };
    const auto notice = [](double seenAt, double end, const char* kind = "five_hour") {
        return Notice{.resetsAt = at(end), .windowKind = kind, .seenAt = at(seenAt)};
    };
    struct Row {
        const char* name;
        QuotaValues values;
        ToldWindowEnds told;
        std::optional<Notice> notice;
        std::optional<double> end;
    };
    const Row rows[] = {
        {"derived", fresh, {}, {}, 4 * hour},
        {"told", fresh, told(-600, 3 * hour), {}, 3 * hour},
        {"told where nothing is derived", idle, told(-600, 3 * hour), {}, 3 * hour},
        {"told before a reset", fresh, told(-hour - 1, hour), {}, 4 * hour},
        {"told with the reset", fresh, told(-hour, hour), {}, hour},
        {"passed", idle, told(-4 * hour, -hour), {}, {}},
        {"passed this second", idle, told(-4 * hour, 0), {}, {}},
        {"passed since the window derived began", small, told(-2 * hour, -hour), {}, {}},
        {"passed before that", small, told(-3 * hour, -2.5 * hour), {}, 3 * hour},
        {"told in the future", idle, told(61, 3 * hour), {}, {}},
        {"too far off to be this window's", idle, told(0, 5 * hour + 601), {}, {}},
        {"a notice", fresh, told(-600, 3 * hour), notice(-60, 2 * hour), 2 * hour},
        {"of another window", fresh, {}, notice(-60, 2 * hour, "seven_day"), 4 * hour},
        {"in the past", fresh, {}, notice(-60, 0), 4 * hour},
        {"five hours ahead", fresh, {}, notice(0, 5 * hour), 5 * hour},
        {"a second more ahead", fresh, {}, notice(0, 5 * hour + 1), 4 * hour},
        {"seen five hours ago", fresh, {}, notice(-5 * hour, 60), 60},
        {"seen a second before", fresh, {}, notice(-5 * hour - 1, 60), 4 * hour},
        {"seen in the future", fresh, {}, notice(61, 60), 4 * hour},
    };
    for (const Row& row : rows) {
        const QuotaWindow window = fiveHour(row.values, 0, row.told, row.notice);
        EXPECT_EQ(fromNoon(window.windowEndsAt), row.end) << row.name;
        EXPECT_EQ(window.windowStartsAt.has_value(), row.end.has_value()) << row.name;
    }
}

TEST(QuotaWindows, aFigureOfTheWindowBeforeForetellsNothing) {
    // Measured an hour before a reset, which was told, and which nothing measured has shown.
    const ToldWindowEnds told{.toldAt = at(-2 * hour), .fiveHour = {}, .sevenDay = at(-hour)};
    UsageSamples weeks;
    for (const double start : {-14.0, -7.0}) {
        weeks.push_back(sample(at(start * day - 2 * hour - 60), {}, 70));
        weeks.push_back(sample(at(start * day - 2 * hour), {}, 0));
    }
    weeks.push_back(sample(at(-3 * hour), {}, 80));
    auto window = Store::sevenDayWindow(weeks, noon, utc, told);
    ASSERT_TRUE(window);
    EXPECT_EQ(window->percent, 80);
    EXPECT_EQ(fromNoon(window->resetsAt), 7 * day - 2 * hour);
    EXPECT_FALSE(window->projection || window->saturatesAt || window->dailyBudget);
    EXPECT_TRUE(window->isStale);

    weeks.push_back(sample(noon, {}, 3));
    window = Store::sevenDayWindow(weeks, noon, utc, told);
    EXPECT_EQ(window->peak, 3);

    // The window began yesterday, unseen: what was used before it is not known.
    const ToldWindowEnds fresh{.toldAt = noon, .fiveHour = {}, .sevenDay = at(6 * day)};
    const auto unseen = samplesOf(values({{-2 * day, 10}, {-hour, 20}, {0, 30}}), true);
    window = Store::sevenDayWindow(unseen, noon, utc, fresh);
    EXPECT_EQ(window->peak, 30);
    EXPECT_EQ(window->dayDelta, 20);
    EXPECT_FALSE(window->dailyBudget);
    // It began today.
    const ToldWindowEnds today{.toldAt = noon, .fiveHour = {}, .sevenDay = at(7 * day - 2 * hour)};
    const auto seen = samplesOf(values({{-day, 10}, {-hour, 20}, {0, 30}}), true);
    window = Store::sevenDayWindow(seen, noon, utc, today);
    ASSERT_TRUE(window->dailyBudget);
    EXPECT_EQ(window->dailyBudget->usedToday, 30);
    EXPECT_FALSE(Store::sevenDayWindow(seen, at(day), utc, {})->dayDelta) << "no newer value";
}

TEST(QuotaWindows, eachAccountHasItsOwn) {
    UsageSamples mixed;
    for (int step = 0; step <= 24; ++step) {
        const Date date = at((step - 24) * 300.0);
        mixed.push_back(step % 2 == 0 ? sample(date, 60 + step, 40, "a") : sample(date, 1, 2, "b"));
    }
    mixed.insert(mixed.begin(), sample(at(-9 * hour), 12, 13, "c"));
    mixed.push_back(sample(at(2 * hour), 9, 9, "d"));
    const auto names = parseJson(R"({"b": "Kunde", "c": "  ", "a": 3})");
    const Notice notice{.resetsAt = at(60), .windowKind = "five_hour", .seenAt = noon};
    const auto accounts = Store::konten(mixed, noon, notice, *names, utc);
    ASSERT_EQ(accounts.size(), 3);
    EXPECT_EQ(accounts[0].org, "a");
    EXPECT_EQ(accounts[0].titel, "Dieses Konto");
    EXPECT_EQ(accounts[0].fuenfStunden->windowEndsAt, at(60));
    EXPECT_EQ(accounts[0].fuenfStunden->ratePerHour, 12);
    EXPECT_EQ(accounts[1].titel, "Kunde");
    EXPECT_EQ(accounts[1].rang, 1);
    EXPECT_FALSE(accounts[1].fuenfStunden->windowEndsAt);
    EXPECT_EQ(accounts[2].titel, "Weiteres Konto 2");
    EXPECT_TRUE(accounts[2].istVeraltet);
    EXPECT_EQ(accounts[2].gemessenAm, at(-9 * hour));
    EXPECT_EQ(Store::primaryOrg(mixed), "d");
    EXPECT_EQ(Store::primaryOrg(mixed, noon), "a");

    const UsageSamples tie{sample(noon, 1, 1, "x"), sample(noon, 2, 2, "y"), sample(at(1), 3)};
    EXPECT_EQ(Store::primaryOrg(tie), "x");
    EXPECT_EQ(Store::orgs(tie), (std::vector<std::string>{"x", "y"}));
    EXPECT_EQ(Store::samples("y", tie).size(), 2);
    EXPECT_EQ(Store::samples({}, tie).size(), 3);
    EXPECT_TRUE(Store::konten(samplesOf(values({{0, 3}})), noon, {}, Json(), utc).empty());
}

TEST(QuotaWindows, aSeriesIsWhatAChartShows) {
    const auto course = values({{-4 * hour, 80}, {-3 * hour, 2}, {0, 50}, {61, 99}});
    const auto series = quotaSeries(course, fiveHour(course), at(-3 * hour), noon);
    ASSERT_EQ(series.points.size(), 2);
    EXPECT_EQ(series.points[0].percent, 2);
    EXPECT_EQ(series.resets, std::vector<Date>{at(-3 * hour)});
    EXPECT_EQ(fromNoon(series.windowEnd), 2 * hour);
    ASSERT_TRUE(series.projection);
    EXPECT_EQ(series.projection->untilPercent, 83);
}

}  // namespace
}  // namespace fleetwise::testing
