#include "monitor/fleet_costs.h"

#include "foundation/virtual_main_loop.h"
#include "support/temporary_directory.h"
#include "support/usage_samples.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace fleetwise::testing {
namespace {

using News = FleetCosts::News;

struct CostedFleet {
    const Date start = parseInternetDate("2026-11-21T12:00:00Z").value();
    TemporaryDirectory home;
    VirtualMainLoop loop{start};
    CostStore store{{home.at("projects"), home.at("codex"), home.at("index")},
                    ::date::locate_zone("Etc/UTC"),
                    1};
    int changes = 0;
    FleetCosts costs{{.loop = loop,
                      .store = store,
                      .calendar = ::date::locate_zone("Europe/Berlin"),
                      .costsChanged = [this] { ++changes; },
                      .progressChanged = [] {}}};

    void append(const std::string& name, const std::string& text) const {
        home.append("projects/work/" + name + ".jsonl", text);
    }

    /// Whether a pass at this moment begins a scan, which is then finished.
    bool scansAfterPass(News news) {
        costs.followPass(news, true);
        return loop.finishBackground() > 0;
    }
};

TEST(FleetCosts, areScannedWhereThereIsNewsButNotAllTheTime) {
    CostedFleet fleet;
    EXPECT_TRUE(fleet.scansAfterPass(News::none)) << "the first one";
    EXPECT_EQ(fleet.changes, 0) << "nothing was found";
    fleet.append("a", usageRecord("1", 1));
    fleet.loop.advance(Seconds(2));
    EXPECT_FALSE(fleet.scansAfterPass(News::some)) << "too early";
    fleet.loop.advance(Seconds(4));
    EXPECT_TRUE(fleet.scansAfterPass(News::none)) << "the news is not forgotten";
    EXPECT_EQ(fleet.changes, 1);
    EXPECT_EQ(fleet.costs.figures({"a"}).tally.output, 1);
    fleet.loop.advance(Seconds(30));
    EXPECT_FALSE(fleet.scansAfterPass(News::none));
    fleet.loop.advance(Seconds(31));
    EXPECT_TRUE(fleet.scansAfterPass(News::none)) << "now and then in any case";
    EXPECT_EQ(fleet.changes, 1);
}

TEST(FleetCosts, writeTheCacheNowAndThenAndWhenAsked) {
    CostedFleet fleet;
    fleet.append("a", usageRecord("1", 1));
    fleet.scansAfterPass(News::some);
    const auto written = std::filesystem::last_write_time(fleet.home.at("index"));
    fleet.append("a", usageRecord("2", 1));
    fleet.loop.advance(Seconds(10));
    EXPECT_TRUE(fleet.scansAfterPass(News::some));
    EXPECT_EQ(std::filesystem::last_write_time(fleet.home.at("index")), written);
    EXPECT_EQ(fleet.costs.figures({"a"}).requests, 2);
    fleet.store.save();
    EXPECT_NE(std::filesystem::last_write_time(fleet.home.at("index")), written);
}

TEST(FleetCosts, followThePriceBookAtOnce) {
    CostedFleet fleet;
    fleet.append("a", usageRecord("1", 1'000'000) + usageRecord("2", 1'000'000, "a-fable"));
    fleet.append("b", usageRecord("3", 1'000'000, "a-haiku", "2026-11-20T22:59:00Z"));
    fleet.append("c", usageRecord("4", 1'000'000, "a-haiku", "2026-11-20T23:30:00Z"));
    fleet.scansAfterPass(News::some);
    const CostFigures before = fleet.costs.figures({"a", "b"});
    EXPECT_EQ(before.api, (Money{.usd = 30.0, .isIncomplete = true}));
    EXPECT_EQ(before.billed, (Money{.usd = 30.0, .isEstimated = true, .isIncomplete = true}));
    EXPECT_EQ(before.modelsWithoutPrice, std::set<std::string>{"a-fable"});
    EXPECT_EQ(fleet.costs.figuresOfToday().requests, 0) << "days tell tokens";
    EXPECT_EQ(fleet.costs.figuresOfToday().api.usd, 25.0) << "a day is the store's: UTC";

    fleet.costs.setPriceBook(Prices::flatBook(2));
    EXPECT_EQ(fleet.changes, 2);
    EXPECT_EQ(fleet.costs.figures({"a", "b", "nobody"}).api, (Money{.usd = 6.0}));
    fleet.costs.setPriceBook(Prices::flatBook(2));
    EXPECT_EQ(fleet.changes, 2);
}

TEST(FleetCosts, countForksAndSubagentsOfACodexSessionForIt) {
    CostedFleet fleet;
    const auto rollout = [&](const std::string& id, const std::string& meta, int more) {
        fleet.home.write("codex/sessions/rollout-" + id + ".jsonl",
                         R"({"type":"session_meta","payload":{"id":")" + id + "\"" + meta + "}}\n" +
                             tokenCount(100, 0, 10) + tokenCount(100 + more, 0, 20));
    };
    setModificationDate(fleet.home.path(), fleet.start);
    rollout("own", "", 1);
    rollout("fork", R"(,"forked_from_id":"own")", 20);
    rollout("subagent", R"(,"parent_thread_id":"fork")", 300);
    rollout("stranger", "", 4000);
    fleet.scansAfterPass(News::some);
    EXPECT_EQ(fleet.costs.cost("own")->tally().input, 101);
    EXPECT_EQ(fleet.costs.figures({"own"}).tally.input, 100 + 1 + 20 + 300);
    EXPECT_EQ(fleet.costs.figures({"own", "fork", "stranger"}).tally.input, 100 + 321 + 4100);
}

}  // namespace
}  // namespace fleetwise::testing
