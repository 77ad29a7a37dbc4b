#include "app/command_line.h"

#include <gtest/gtest.h>

namespace fleetwise {
namespace {

TEST(CommandLine, readsTheFirstArgumentOnly) {
    const struct {
        const char* name;
        std::vector<std::string> arguments;
        Job job;
    } rows[] = {
        {"none", {}, Job::application},
        {"report", {"--dump"}, Job::report},
        {"report with more behind it", {"--dump", "--wolke"}, Job::report},
        {"hooks", {"--install-hooks"}, Job::installHooks},
        {"hooks again", {"--uninstall-hooks"}, Job::uninstallHooks},
        {"an argument of the system's", {"-psn_0_1234", "--dump"}, Job::application},
        {"an address", {"fleetwise://activate/x"}, Job::application},
        {"unknown", {"--wolke"}, Job::unknownSwitch},
        {"a switch is matched whole", {"--dumpling"}, Job::unknownSwitch},
        {"two dashes alone", {"--"}, Job::unknownSwitch},
        {"checks", {"--selftest"}, Job::selfTest},
        {"the address comes first", {"fleetwise://x", "--selftest"}, Job::application},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(parseCommand(row.arguments).job, row.job);
    }
    EXPECT_EQ(parseCommand({"--write-iconset", "/tmp/a b", "c"}).argument, "/tmp/a b");
    EXPECT_EQ(parseCommand({"--write-iconset"}).argument, "");
    EXPECT_EQ(parseCommand({"fleetwise://activate/x"}).name, "fleetwise://activate/x");
}

TEST(CommandLine, refusesAnUnknownSwitchInFixedWords) {
    EXPECT_EQ(unknownSwitchMessage("--wolke"),
              "Fleetwise: unbekannter Schalter --wolke\n"
              "Bekannt sind: --dump, --install-hooks, --uninstall-hooks, --selftest,\n"
              "--verify-licence, --write-iconset, --write-og-image,\n"
              "--write-dmg-background, --check-dmg-background, --dmg-layout,\n"
              "--stall-probe\n");
}

}  // namespace
}  // namespace fleetwise
