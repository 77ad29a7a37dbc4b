#include "platform/qt_user_defaults.h"

#include "support/temporary_directory.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>

namespace fleetwise::testing {
namespace {

TEST(QtUserDefaults, keepEveryTypeAcrossRuns) {
    const TemporaryDirectory config;
    ::setenv("XDG_CONFIG_HOME", config.path().c_str(), 1);
    EXPECT_FALSE(QtUserDefaults().boolean("missing").has_value());
    EXPECT_FALSE(std::filesystem::exists(config.at("Fleetwise"))) << "reading must write nothing";
    {
        QtUserDefaults defaults;
        defaults.set("isMuted", true);
        defaults.set("dormantRetentionDays", 30);
        defaults.set("doneSound", "—");
        defaults.set("favoriteSessionIds", Json{"a,b", "c"});
        defaults.set("sessionNotifyOverrides", Json{{"a", true}});
        defaults.set("gone", 1);
        defaults.remove("gone");
    }
    const QtUserDefaults defaults;
    EXPECT_EQ(defaults.boolean("isMuted"), true);
    EXPECT_EQ(defaults.integer("dormantRetentionDays"), 30);
    EXPECT_EQ(defaults.string("doneSound"), "—");
    EXPECT_EQ(defaults.strings("favoriteSessionIds"), (std::vector<std::string>{"a,b", "c"}));
    EXPECT_EQ(defaults.dictionary("sessionNotifyOverrides"), Json({{"a", true}}));
    EXPECT_TRUE(defaults.value("gone").is_null());
}

}  // namespace
}  // namespace fleetwise::testing
