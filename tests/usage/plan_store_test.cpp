#include "usage/plan_store.h"

#include <gtest/gtest.h>

namespace fleetwise::testing {
namespace {

using Plan = PlanStore::Plan;

TEST(Plans, ofClaudeAreNamedAsTheProviderNamesThem) {
    const struct {
        std::optional<std::string> type;
        std::optional<std::string> tier;
        std::optional<std::string> name;
        bool isFlatRate;
    } rows[] = {
        {"claude_max", "default_claude_max_20x", "Max 20x", true},
        {"claude_max", "default_claude_max_5x", "Max 5x", true},
        {"claude_max", {}, "Max", true},
        {{}, "default_claude_max_20x", "Max 20x", true},
        {"claude_pro", "default_claude_ai", "Pro", true},
        {"claude_pro", "default_claude_max_20x", "Pro", true},
        {"claude_team", "default_raven", "Team", true},
        {"claude_enterprise", {}, "Enterprise", false},
        {"claude_free", {}, "Free", false},
        {" Claude_Max ", {}, "Max", true},
        {"research_lab\n", {}, "Research Lab", false},
        {"claude_maximal", "default_claude_max_20x", "Maximal", false},
        {std::string(60, 'x'), {}, "X" + std::string(38, 'x') + "…", false},
    };
    for (const auto& row : rows) {
        const auto plans =
            PlanStore::plans({.organizationType = row.type, .rateLimitTier = row.tier}, {});
        ASSERT_EQ(plans.size(), 1);
        EXPECT_EQ(plans[0].name, row.name);
        EXPECT_EQ(plans[0].isFlatRate, row.isFlatRate) << *row.name;
        EXPECT_EQ(plans[0].hasOverage, std::nullopt) << "what is not told is not guessed";
    }
    EXPECT_TRUE(PlanStore::plans({}, CodexLimits()).empty());
    EXPECT_TRUE(PlanStore::plans({.organizationType = " "}, {}).empty());
    EXPECT_EQ(PlanStore::plans({.hasExtraUsage = false}, {}).at(0).hasOverage, false);
}

TEST(Plans, ofCodexTellCredits) {
    const struct {
        std::optional<std::string> type;
        std::optional<CodexLimits::Credits> credits;
        Plan expected;
    } rows[] = {
        {"plus", {}, {.name = "Plus", .isFlatRate = true}},
        {"enterprise", {}, {.name = "Enterprise"}},
        {{}, CodexLimits::Credits{true, false, 12.345}, {.creditMinorUnits = 1235}},
        {{}, CodexLimits::Credits{true, true, {}}, {.hasUnlimitedCredits = true}},
        {"pro", CodexLimits::Credits{false, false, 0.0}, {.name = "Pro", .isFlatRate = true}},
        {"pro", CodexLimits::Credits{true, false, 1e300}, {.name = "Pro", .isFlatRate = true}},
    };
    for (const auto& row : rows) {
        Plan expected = row.expected;
        expected.agent = SessionAgent("codex");
        const auto plans =
            PlanStore::plans({}, CodexLimits{.credits = row.credits, .planType = row.type});
        EXPECT_EQ(plans, std::vector{expected}) << row.type.value_or("none");
    }
}

}  // namespace
}  // namespace fleetwise::testing
