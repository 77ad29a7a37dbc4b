#include "reactions/stall.h"

#include "support/temporary_directory.h"

#include <gtest/gtest.h>

namespace fleetwise::testing {
namespace {

TEST(Stall, listSurvivesDamage) {
    const TemporaryDirectory folder;
    EXPECT_TRUE(loadStalls(folder.at("missing.json")).empty());
    EXPECT_TRUE(loadStalls(folder.write("torn.json", "[{\"at\":")).empty());
    EXPECT_TRUE(loadStalls(folder.write("object.json", "{}")).empty());
    const auto stalls = loadStalls(folder.write("stalls.json", R"([
        {"at":"2026-11-21T02:05:29.000Z","seconds":2.5,"sessions":12,"cpu":0.4},
        {"at":"yesterday","seconds":9},
        17,
        {"at":"2026-11-21T03:05:29.000Z","seconds":3}])"));
    ASSERT_EQ(stalls.size(), 2U);
    EXPECT_EQ(stalls[0], (Stall{.at = dateFromSeconds(1'795'226'729),
                                .seconds = Seconds(2.5),
                                .sessions = 12,
                                .cpu = Seconds(0.4)}));
    EXPECT_FALSE(stalls[1].cpu);
}

}  // namespace
}  // namespace fleetwise::testing
