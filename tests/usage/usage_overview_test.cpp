#include "usage/usage_overview.h"

#include "support/temporary_directory.h"
#include "support/usage_samples.h"
#include "usage/window_shares.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

namespace fleetwise::testing {
namespace {

using Source = UsageOverview::Source;

const Date now = *parseInternetDate("2026-11-21T12:00:00.000Z");
const Date windowStart = now - Seconds(3 * 3'600);
constexpr const char* before = "2026-11-21T08:59:59.999Z";
constexpr const char* within = "2026-11-21T09:00:00.000Z";

TEST(WindowShares, followWhatRequestsOfTheWindowCost) {
    const TemporaryDirectory home;
    const auto shares = [&](int percent) {
        return windowShares(home.path(), windowStart, percent, Prices::Book::builtIn());
    };
    EXPECT_TRUE(shares(40).empty());
    home.write("p/a.jsonl",
               usageRecord("old", 900, "opus", before) + usageRecord("old", 900, "opus", within) +
                   usageRecord("1", 100, "opus", within) + usageRecord("1", 700, "opus", within));
    home.write("p/a/subagents/agent-1.jsonl", usageRecord("2", 200, "opus", within));
    home.write("p/b.jsonl", usageRecord("3", 500, "haiku", within));
    EXPECT_EQ(shares(40), (WindowShares{{"a", 30}, {"b", 10}}))
        << "300 tokens at 25 $, 500 at 5 $; a request counts once, by its first record";
    EXPECT_TRUE(shares(0).empty() || shares(0).at("a") == 0);

    home.write("p/c.jsonl", usageRecord("4", 800, "unpriced", within));
    EXPECT_EQ(shares(80), (WindowShares{{"a", 30}, {"b", 10}, {"c", 40}}))
        << "without a price tokens weigh what the others do on average";

    home.write("p/c.jsonl", usageRecord("1", 100, "opus", within));
    EXPECT_EQ(shares(40), (WindowShares{{"a", 30}, {"b", 10}, {"c", 10}}))
        << "a fork's copies weigh for it, too, but once in the sum";

    home.write("p/old.jsonl", usageRecord("5", 1, "opus", within));
    setModificationDate(home.at("p/old.jsonl"), windowStart - Seconds(1));
    EXPECT_FALSE(shares(40).contains("old")) << "not opened";
}

class CollectorTest : public ::testing::Test {
protected:
    UsageOverview collect(bool wantsShares = false, Date at = now) {
        return collector.collect({.accountNames = Json::object(),
                                  .wantsShares = wantsShares,
                                  .book = Prices::Book::builtIn(),
                                  .calendar = ::date::locate_zone("Etc/UTC")},
                                 at);
    }
    /// Samples as {seconds before now, percent, org}.
    void writeHistory(std::initializer_list<std::tuple<double, int, const char*>> samples) {
        std::string entries;
        for (const auto& [ago, percent, org] : samples) {
            entries += fmt::format(R"({}{{"t":{:.0f},"u":{{"fh":{}}},"org":"{}"}})",
                                   entries.empty() ? "" : ",",
                                   secondsSince1970(now - Seconds(ago)) * 1000, percent, org);
        }
        home.write("history.json", R"({"samples":[)" + entries + "]}");
    }
    void writeConfiguration(double ago, int percent) {
        home.write(".claude.json",
                   fmt::format(R"({{"cachedUsageUtilization":{{"fetchedAtMs":{:.0f},"utilization":)"
                               R"({{"five_hour":{{"utilization":{},"resets_at":"{}"}}}}}}}})",
                               secondsSince1970(now - Seconds(ago)) * 1000, percent,
                               internetDate(now + Seconds(7'200))));
    }

    TemporaryDirectory home;
    UsageHistoryStore history{home.at("history.json")};
    QuotaNotice notices;
    UsageCollector collector{{.projectsDirectory = home.at("projects"),
                              .codexDirectory = home.at("codex"),
                              .claudeConfiguration = home.at(".claude.json"),
                              .ownSamples = home.at("usage-samples.json"),
                              .codexGoals = home.at("codex/goals_1.sqlite")},
                             history,
                             notices};
};

TEST_F(CollectorTest, saysWhoseFiguresTheWindowsAreMadeOf) {
    EXPECT_EQ(collect().source, Source::none);
    EXPECT_FALSE(collect().fiveHour);
    writeConfiguration(600, 20);
    const auto own = collect();
    EXPECT_EQ(own.source, Source::claudeCode);
    EXPECT_EQ(own.fiveHour->percent, 20);
    EXPECT_EQ(own.fiveHour->windowEndsAt, now + Seconds(7'200));
    writeHistory({{3'000, 5, "a"}, {60, 25, "a"}});
    const auto both = collect();
    EXPECT_EQ(both.source, Source::both);
    EXPECT_EQ(both.samples->size(), 3);
    EXPECT_EQ(both.fiveHour->percent, 25);
    EXPECT_EQ(collect().samples, both.samples) << "nothing changed";
    // Nobody says which of two accounts Claude Code's figures are of.
    writeHistory({{3'000, 5, "a"}, {200, 70, "b"}, {60, 25, "a"}});
    const auto several = collect();
    EXPECT_EQ(several.source, Source::desktopApp);
    EXPECT_EQ(several.accounts.size(), 2);
    EXPECT_EQ(several.fiveHour->percent, 25);
    EXPECT_EQ(several.fiveHour->windowEndsAt, std::nullopt);
}

TEST_F(CollectorTest, sharesOutTheWindowOnceAMinuteAndOnlyWhereAsked) {
    home.write("projects/p/a.jsonl", usageRecord("1", 100, "opus", "2026-11-21T11:00:00.000Z"));
    writeHistory({{7'200, 30, "a"}, {7'000, 2, "a"}, {60, 40, "a"}});
    EXPECT_TRUE(collect().windowShares.empty());
    EXPECT_EQ(collect(true).windowShares, (WindowShares{{"a", 40}}));
    home.write("projects/p/b.jsonl", usageRecord("2", 100, "opus", "2026-11-21T11:00:00.000Z"));
    EXPECT_EQ(collect(true, now + Seconds(59)).windowShares.size(), 1);
    EXPECT_EQ(collect(true, now + Seconds(60)).windowShares, (WindowShares{{"a", 20}, {"b", 20}}));
    writeHistory({{7'200, 30, "a"}, {60, 40, "a"}});
    EXPECT_TRUE(collect(true, now + Seconds(120)).windowShares.empty()) << "no known start";
}

}  // namespace
}  // namespace fleetwise::testing
