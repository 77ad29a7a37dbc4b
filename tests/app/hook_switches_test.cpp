// The switches through a copy of the real program that is laid out as an installation.

#include "program_run.h"

#include <gmock/gmock.h>

#include <filesystem>

namespace fleetwise::testing {
namespace {

using ::testing::AllOf;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::StartsWith;

class HookSwitches : public ::testing::Test {
protected:
    HookSwitches() {
        prefix.makeDirectory("bin");
        std::filesystem::copy_file(FLEETWISE_PROGRAM, program);
        prefix.write("share/fleetwise/en.lproj/Localizable.strings",
                     contentsOf(sourceDirectory() + "/resources/en.lproj/Localizable.strings"));
    }

    ProgramRun runWith(const std::string& argument) const { return run(home, argument, program); }

    TemporaryDirectory home;
    TemporaryDirectory prefix;
    std::string program = prefix.at("bin/fleetwise");
    std::string settings = home.at(".claude/settings.json");
};

TEST_F(HookSwitches, installAndUninstallTheHooks) {
    prefix.write("lib/fleetwise/fleetwise-hook", "program");
    home.write(".claude/settings.json", R"({"model":"opus"})");
    const ProgramRun installed = runWith("--install-hooks");
    EXPECT_EQ(installed.exitStatus, 0) << installed.errors;
    EXPECT_THAT(installed.output,
                StartsWith("Hooks registriert für: SessionStart, UserPromptSubm"));
    EXPECT_THAT(installed.output, HasSubstr(", SessionEnd (" + settings + ")\nSicherung liegt in " +
                                            home.at(".claude/fleetwise/settings.backup.")));
    EXPECT_THAT(installed.output, EndsWith("Z.json\n"));
    EXPECT_EQ(contentsOf(home.at(".claude/fleetwise/fleetwise-hook")), "program");
    EXPECT_TRUE(std::filesystem::is_directory(home.at(".claude/fleetwise/status")));
    EXPECT_THAT(runWith("--dump").output,
                AllOf(HasSubstr("\nHooks:     installiert\n"), HasSubstr("-Kopie: aktuell\n")));
    prefix.write("lib/fleetwise/fleetwise-hook", "another version");
    EXPECT_THAT(runWith("--dump").output, HasSubstr("-Kopie: VERALTET"));

    const ProgramRun removed = runWith("--uninstall-hooks");
    EXPECT_EQ(removed.exitStatus, 0) << removed.errors;
    EXPECT_EQ(removed.output, "Hooks von fleetwise entfernt. Fremde Hooks blieben unberührt.\n");
    EXPECT_EQ(contentsOf(settings), "{\n  \"model\": \"opus\"\n}\n");
}

TEST_F(HookSwitches, speakTheLanguageOfTheSettings) {
    home.write(".config/Fleetwise/Fleetwise.conf", "[General]\nlanguage=en\n");
    EXPECT_EQ(runWith("--uninstall-hooks").output,
              "Hooks of fleetwise removed. Other hooks were left untouched.\n");
    const ProgramRun refused = runWith("--install-hooks");
    EXPECT_EQ(refused.exitStatus, 1);
    EXPECT_EQ(refused.output, "");
    EXPECT_THAT(refused.errors, StartsWith("Error: The hook program was not found"));
    EXPECT_FALSE(std::filesystem::exists(settings));
}

}  // namespace
}  // namespace fleetwise::testing
