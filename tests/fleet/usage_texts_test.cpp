// Quota, plans, goals and days of usage, as they are told.

#include "fleet/goal_texts.h"
#include "fleet/quota_texts.h"
#include "fleet/usage_days.h"

#include <gtest/gtest.h>

namespace fleetwise::testing {
namespace {

using Window = QuotaWindow;

const Calendar berlin = ::date::locate_zone("Europe/Berlin");
/// A Saturday, 12:00 in Berlin.
const Date now = *parseInternetDate("2026-11-21T11:00:00.000Z");
constexpr double hour = 3'600;

Date in(double seconds) {
    return now + Seconds(seconds);
}

TEST(QuotaTexts, tellWhenAWindowBeginsAnew) {
    const struct {
        std::optional<Date> windowEnds;
        std::optional<Date> resets;
        const char* expected;
    } rows[] = {
        {{}, {}, "5 h 42 %"},
        {in(110 * 60), {}, "5 h 42 % · noch 1 h 50 min"},
        {in(110 * 60), in(3 * hour), "5 h 42 % · noch 1 h 50 min"},
        {{}, in(24 * hour), "5 h 42 % · noch 1 T"},
        {{}, in(24 * hour + 60), "5 h 42 % · So 12:01"},
        {{}, in(143 * hour), "5 h 42 % · Fr 11:00"},
        {{}, in(144 * hour), "5 h 42 % · 27.11. 12:00"},
        {now, {}, "5 h 42 %"},
    };
    for (const auto& row : rows) {
        const Window window{.percent = 42, .resetsAt = row.resets, .windowEndsAt = row.windowEnds};
        EXPECT_EQ(quotaLineText(window, fiveHours, now, berlin), row.expected);
    }
    EXPECT_EQ(quotaLineText({.percent = 107}, sevenDays, now, berlin), "7 d 107 %");
}

TEST(QuotaTexts, tellWhatFollowsFromAWindow) {
    Window window{.percent = 42, .measuredAt = in(-3 * hour)};
    for (const auto& text : {quotaAgeText(window, now), quotaRateText(window),
                             quotaProjectionText(window, now, berlin), quotaBudgetText(window),
                             quotaDayDeltaText(window)}) {
        EXPECT_EQ(text, "");
    }
    window.isStale = true;
    EXPECT_EQ(quotaAgeText(window, now), "vor 3 h gemessen");
    window.ratePerHour = 4.24;
    EXPECT_EQ(quotaRateText(window), "4,2 Punkte je Stunde");
    window.ratePerHour = 0.96;
    EXPECT_EQ(quotaRateText(window), "1 Punkt je Stunde");
    window.dailyBudget = {.perDay = 12.5, .usedToday = 8};
    EXPECT_EQ(quotaBudgetText(window), "12,5 Punkte je Tag übrig, heute 8 verbraucht");

    window.projection = {.percent = 87};
    EXPECT_EQ(quotaProjectionText(window, now, berlin), "am Ende 87 %");
    window.saturatesAt = in(6 * hour + 46 * 60);
    EXPECT_EQ(quotaProjectionText(window, now, berlin), "bei diesem Tempo voll um 18:46");
    window.projection = {.percent = 120, .exhaustedAt = in(24 * hour)};
    EXPECT_EQ(quotaProjectionText(window, now, berlin), "bei diesem Tempo voll um So 12:00");
    window.percent = 100;
    EXPECT_EQ(quotaProjectionText(window, now, berlin), "");

    for (const auto& [delta, text] :
         {std::pair(12, "+12 Punkte gegen gestern"), std::pair(-1, "−1 Punkt gegen gestern"),
          std::pair(0, "wie gestern um diese Zeit")}) {
        window.dayDelta = delta;
        EXPECT_EQ(quotaDayDeltaText(window), text);
    }
}

TEST(QuotaTexts, doNotTellTheFigureOfAWindowOfCodexThatHasReset) {
    const struct {
        std::int64_t minutes;
        std::optional<Date> resetsAt;
        std::optional<Date> observedAt;
        const char* expected;
    } rows[] = {
        {300, in(hour), in(-60), "12 % · noch 1 h"},
        {300, now, in(-60), "zurückgesetzt seit 0 s"},
        {300, in(-hour), in(-2 * hour), "zurückgesetzt seit 1 h"},
        {300, {}, in(-6 * hour), "12 % · vor 6 h gemessen"},
        {300, {}, {}, "12 % · wann gemessen, ist unbekannt"},
        {10'080, in(72 * hour), in(-hour), "12 % · Di 12:00"},
    };
    for (const auto& row : rows) {
        const CodexQuota quota{.usedPercent = 12,
                               .windowMinutes = row.minutes,
                               .resetsAt = row.resetsAt,
                               .observedAt = row.observedAt};
        EXPECT_EQ(codexQuotaText(quota, now, berlin), row.expected);
    }
}

TEST(QuotaTexts, namePlansAndSources) {
    EXPECT_EQ(planText({.name = "Max 20x", .hasOverage = true, .isFlatRate = true}),
              "Max 20x, Pauschale, Zusatznutzung an");
    EXPECT_EQ(planText({.hasOverage = false, .creditMinorUnits = 123'456}),
              "Tarif unbekannt, Zusatznutzung aus, Guthaben 1.234,56");
    EXPECT_EQ(planText({.name = "Plus", .creditMinorUnits = 150, .currency = "USD"}),
              "Plus, Guthaben 1,50 $");
    EXPECT_EQ(planText({.name = "Plus", .creditMinorUnits = 1, .hasUnlimitedCredits = true}),
              "Plus, unbegrenztes Guthaben");

    UsageOverview usage;
    EXPECT_TRUE(quotaSourceText(usage).starts_with("Die Datei plan-usage-history.json wird"));
    usage.samples = std::make_shared<const UsageSamples>(3);
    usage.source = UsageOverview::Source::desktopApp;
    EXPECT_EQ(quotaSourceText(usage),
              "Quelle: plan-usage-history.json der Claude-Desktop-App. Messpunkte: 3, im Abstand "
              "von rund fünf Minuten.");
    usage.source = UsageOverview::Source::claudeCode;
    EXPECT_NE(quotaSourceText(usage).find("Claude Code"), std::string::npos);
}

TEST(GoalTexts, fitOnALine) {
    using Status = GoalStore::Status;
    GoalStore::Goal goal{.objective = "Ship\nit", .tokensUsed = 31'000};
    EXPECT_EQ(goalText(goal), "Ship it · 31.000 Token");
    goal.tokenBudget = 50'000;
    goal.status = Status::paused;
    EXPECT_EQ(goalText(goal), "Ship it · angehalten · 62 % von 50.000 Token");
    goal = {.objective = " ", .status = Status::budgetLimited, .tokenBudget = 1'000};
    goal.tokensUsed = 999;
    EXPECT_EQ(goalText(goal), "Budget verbraucht · 99 % von 1.000 Token") << "not rounded up";
    EXPECT_EQ(goalText({}), "");
    EXPECT_EQ(goalLimitsText({}), "");
    EXPECT_EQ(goalLimitsText({.costLimitUSD = 5}), "höchstens 5,00 $");
    EXPECT_EQ(goalLimitsText({.tokenBudget = 1'000, .costLimitUSD = 5, .windowShareLimit = 2.5}),
              "höchstens 5,00 $, 2,5 % des 5-Stunden-Fensters, 1.000 Token");
}

TEST(UsageDays, areThoseOfTheCalendarUpToToday) {
    const std::map<std::string, ModelTallies, std::less<>> used{
        {"2026-10-25",
         {{"claude-opus-5-5", {.output = 1'000'000}},
          {"claude-opus-5-5-20260801", {.output = 1}},
          {"claude-fable-5", {.output = 7}},
          {"", {.output = 2}},
          {"unused", {}}}},
        {"2026-10-23", {{"claude-opus-5-5", {.output = 5}}}}};
    // 23:30 on the day that has 25 hours.
    const Date evening = *parseInternetDate("2026-10-25T22:30:00.000Z");
    const auto days = usageDays(used, Prices::Book::builtIn(), 2, evening, berlin);
    ASSERT_EQ(days.size(), 2);
    EXPECT_EQ(days[0].day, ::date::year(2026) / 10 / 24);
    EXPECT_TRUE(days[0].models.empty());
    const auto& models = days[1].models;
    ASSERT_EQ(models.size(), 3);
    EXPECT_EQ(models[0].name, "Fable 5");
    EXPECT_EQ(models[0].api, (Money{.isIncomplete = true}));
    EXPECT_EQ(models[1].name, "Ohne Modell");
    EXPECT_EQ(models[2].name, "Opus 5.5");
    EXPECT_EQ(models[2].tally.output, 1'000'001) << "ids that are called the same are one";
    EXPECT_NEAR(*models[2].api.usd, 25, 0.01);
    EXPECT_TRUE(usageDays(used, Prices::Book::builtIn(), 0, evening, berlin).empty());
}

}  // namespace
}  // namespace fleetwise::testing
