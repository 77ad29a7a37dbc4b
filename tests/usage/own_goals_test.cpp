#include "usage/own_goals.h"

#include <gtest/gtest.h>

#include <cmath>

namespace fleetwise::testing {
namespace {

const Date created = *parseInternetDate("2026-11-21T10:00:00.000Z");

OwnGoals::Entry limits(std::optional<double> usd, std::optional<double> share = {},
                       std::string objective = "") {
    return {.objective = std::move(objective),
            .costLimitUSD = usd,
            .windowShareLimit = share,
            .createdAt = created};
}

TEST(OwnGoals, areStoredAndReadBack) {
    Json stored;
    OwnGoals goals(Json::object(), [&](const Json& entries) { stored = entries; });
    OwnGoals::Entry entry = limits(5.5, 30, " ship ");
    entry.tokenBudget = 200'000;
    goals.set("a", entry);
    goals.set("b", limits({}, 12.5));
    goals.set("c", limits(1));
    goals.set("c", limits(0, -1, " \n"));
    entry.objective = "ship";
    const OwnGoals again(stored, [](const Json&) { FAIL() << "reading stores nothing"; });
    EXPECT_EQ(again.entries(), (OwnGoals::Entries{{"a", entry}, {"b", limits({}, 12.5)}}));
    goals.remove("a");
    EXPECT_FALSE(stored.contains("a"));

    const Json foreign = Json::parse(
        R"({"a":3,"b":{"objective":"x"},"c":{"createdAt":"2026-11-21T10:00:00.000Z"},)"
        R"("d":{"createdAt":"2026-11-21T10:00:00.000Z","objective":4,"costLimitUSD":"5",)"
        R"("tokenBudget":7}})");
    const OwnGoals read(foreign, [](const Json&) {});
    EXPECT_EQ(read.entries().size(), 1);
    EXPECT_EQ(read.entry("d"),
              (OwnGoals::Entry{.tokenBudget = 7, .costLimitUSD = {}, .createdAt = created}));
    EXPECT_TRUE(OwnGoals(Json::array(), [](const Json&) {}).entries().empty());
}

TEST(OwnGoals, limitsAreReachedExactlyAtThem) {
    const struct {
        const char* name;
        OwnGoals::Entry entry;
        std::optional<double> usd;
        std::optional<double> share;
        std::optional<OwnGoals::Breach> expected;
    } rows[] = {
        {"one cent below", limits(5), 4.99, 100, {}},
        {"exactly", limits(5), 5.0, {}, OwnGoals::CostBreach{5, 5}},
        {"a sum of fractions",
         limits(0.3),
         0.1 + 0.1 + 0.1 - 1e-16,
         {},
         OwnGoals::CostBreach{0.1 + 0.1 + 0.1 - 1e-16, 0.3}},
        {"above", limits(5, 30), 6.0, 40.0, OwnGoals::CostBreach{6, 5}},
        {"share", limits(5, 30), 4.0, 30.0, OwnGoals::WindowBreach{30, 30}},
        {"share below", limits({}, 30), 9.0, 29.9, {}},
        {"unknown figures", limits(5, 30), {}, {}, {}},
        {"no number", limits(5, 30), NAN, NAN, {}},
        {"no limits", limits({}, {}, "ship"), 9.0, 99.0, {}},
    };
    for (const auto& row : rows) {
        OwnGoals goals(Json::object(), [](const Json&) {});
        goals.set("a", row.entry);
        EXPECT_EQ(goals.breachToAnnounce("a", row.usd, row.share), row.expected) << row.name;
        EXPECT_EQ(goals.breachToAnnounce("other", row.usd, row.share), std::nullopt) << row.name;
    }
}

TEST(OwnGoals, areAnnouncedOncePerLimit) {
    OwnGoals goals(Json::object(), [](const Json&) {});
    const auto isAnnounced = [&](const std::string& id, double usd) {
        return goals.breachToAnnounce(id, usd, 0).has_value();
    };
    goals.set("a", limits(5, 30));
    goals.set("b", limits(5));
    EXPECT_TRUE(isAnnounced("a", 5));
    EXPECT_FALSE(isAnnounced("a", 9));
    EXPECT_TRUE(isAnnounced("b", 5)) << "each session has keys of its own";
    EXPECT_TRUE(goals.breachToAnnounce("a", 9, 30)) << "each kind has a key of its own";
    goals.set("a", limits(5, 30, "another objective"));
    EXPECT_FALSE(isAnnounced("a", 9));
    goals.set("a", limits(6));
    EXPECT_TRUE(isAnnounced("a", 9));
    goals.set("a", limits(5));
    EXPECT_FALSE(isAnnounced("a", 9)) << "the same limit again";
}

TEST(OwnGoals, countTheSessionsTokens) {
    OwnGoals goals(Json::object(), [](const Json&) {});
    OwnGoals::Entry entry = limits({}, {}, "ship");
    entry.tokenBudget = 100;
    goals.set("a", entry);
    const auto before = goals.goal("a", 99, created + Seconds(60));
    ASSERT_TRUE(before);
    EXPECT_TRUE(before->isOwn);
    EXPECT_EQ(before->status, GoalStore::Status::active);
    EXPECT_EQ(before->timeUsed, 60);
    EXPECT_EQ(goals.goal("a", 100, created)->status, GoalStore::Status::budgetLimited);
    EXPECT_FALSE(goals.goal("b", 1, created));
}

}  // namespace
}  // namespace fleetwise::testing
