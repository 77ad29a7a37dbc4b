#include "sources/paths.h"

#include "support/temporary_directory.h"

#include <gtest/gtest.h>

#include <cstdlib>

namespace fleetwise::testing {
namespace {

TEST(Paths, findTheDesktopAppWhereItKeepsItsFiles) {
    const TemporaryDirectory home;
    Paths::setHome(home.path());
    const std::string usual = home.at(".config/Claude");
    const std::pair<const char*, std::string> rows[] = {
        {nullptr, usual}, {"", usual}, {"relative", usual}, {"/x", "/x/Claude"}};
    for (const auto& [config, expected] : rows) {
        config == nullptr ? ::unsetenv("XDG_CONFIG_HOME") : ::setenv("XDG_CONFIG_HOME", config, 1);
        EXPECT_EQ(Paths::desktopCodeSessions(), expected + "/claude-code-sessions");
        EXPECT_EQ(Paths::usageHistoryFile(), expected + "/plan-usage-history.json");
    }
    home.makeDirectory("Library/Application Support/Claude");
    EXPECT_EQ(Paths::desktopCodeSessions(),
              home.at("Library/Application Support/Claude/claude-code-sessions"));
    EXPECT_EQ(Paths::usageHistoryFile(),
              home.at("Library/Application Support/Claude/plan-usage-history.json"));
}

}  // namespace
}  // namespace fleetwise::testing
