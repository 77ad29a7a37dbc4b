#include "monitor/settings.h"

#include <gtest/gtest.h>

#include <algorithm>

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
    EXPECT_EQ(settings.get(Settings::language), "system");

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
    const auto keys = Settings::keys();
    for (const auto& [key, value] : Settings::registeredDefaults())
        EXPECT_EQ(std::count(keys.begin(), keys.end(), key), 1) << key;
}

TEST(Settings, readWhatIsStoredAndElseTheirDefault) {
    InMemoryUserDefaults defaults;
    Settings settings(defaults);
    EXPECT_EQ(settings.storedNotifyingStates(),
              (std::set{SessionState::decision, SessionState::waiting, SessionState::failed,
                        SessionState::done}));
    defaults.set("notifyingStates", Json{"done", "sleeping", "dormant"});
    EXPECT_EQ(settings.storedNotifyingStates(),
              (std::set{SessionState::done, SessionState::dormant}));
    defaults.set("notifyingStates", Json::array());
    EXPECT_TRUE(settings.storedNotifyingStates().empty()) << "none is a choice too";

    defaults.set("groupMode", "galaxy");
    defaults.set("activeFilters", Json{"working", "galaxy"});
    EXPECT_EQ(settings.listRules().groupMode, GroupMode::status);
    EXPECT_EQ(settings.listRules().filters, std::set{ListFilter::working});

    defaults.set("stateActions", R"([{"name":"a"}])");
    EXPECT_EQ(settings.get(Settings::stateActions).size(), 1U) << "a store may keep text only";
    defaults.set("stateActions", "{broken");
    EXPECT_TRUE(settings.get(Settings::stateActions).empty());
}

TEST(Settings, areAdoptedFromThePreviousNameOnce) {
    InMemoryUserDefaults defaults;
    InMemoryUserDefaults earlier;
    Settings settings(defaults);
    settings.set(Settings::density, "comfortable");
    earlier.set("density", "compact");
    earlier.set("isMuted", true);
    earlier.set("somethingElse", 1);
    settings.adoptSettingsFromPreviousName(earlier);
    EXPECT_EQ(settings.get(Settings::density), "comfortable") << "what is chosen here stays";
    EXPECT_TRUE(settings.get(Settings::isMuted));
    EXPECT_FALSE(defaults.isStored("somethingElse"));

    settings.set(Settings::isMuted, false);
    settings.adoptSettingsFromPreviousName(earlier);
    EXPECT_FALSE(settings.get(Settings::isMuted));
}

}  // namespace
}  // namespace fleetwise
