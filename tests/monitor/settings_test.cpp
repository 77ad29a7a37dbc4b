#include "monitor/settings.h"

#include <gtest/gtest.h>

namespace fleetwise {
namespace {

TEST(Settings, askForThePassThatTheUserWants) {
    InMemoryUserDefaults defaults;
    const Settings settings(defaults);
    auto input = settings.snapshotInput();
    EXPECT_EQ(input.dormantMaxAge, Seconds(86'400));
    EXPECT_EQ(input.doneGracePeriod, Seconds(1800));
    EXPECT_TRUE(input.showsCodex);
    EXPECT_TRUE(input.includeStats);
    EXPECT_EQ(settings.language(), "system");

    defaults.set("dormantRetentionDays", 0);
    defaults.set("doneGraceMinutes", 5);
    defaults.set("showsCodex", false);
    defaults.set("dismissedSessionIds", Json{"a", "b"});
    defaults.set("favoriteSessionIds", Json{"c"});
    input = settings.snapshotInput();
    EXPECT_FALSE(input.dormantMaxAge);
    EXPECT_EQ(input.doneGracePeriod, Seconds(300));
    EXPECT_FALSE(input.showsCodex);
    EXPECT_EQ(input.dismissed, (std::set<std::string>{"a", "b"}));
    EXPECT_EQ(input.keepRegardlessOfAge, (std::set<std::string>{"c"}));

    defaults.set("showDormant", false);
    EXPECT_EQ(settings.snapshotInput().dormantMaxAge, Seconds(0));
}

TEST(Settings, register22Defaults) {
    EXPECT_EQ(Settings::registeredDefaults().size(), 22U);
}

}  // namespace
}  // namespace fleetwise
