// Starting at login by an entry of the desktop, which the desktop and the user may change as well.

#include "platform/login_start.h"

#include "foundation/directory.h"
#include "support/temporary_directory.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace fleetwise::testing {
namespace {

class LoginStartTest : public ::testing::Test {
protected:
    static std::unique_ptr<LoginStart> startOf(const TemporaryDirectory& home,
                                               const std::string& program) {
        return makeLoginStart(home.at(".config"), program);
    }

    const TemporaryDirectory home;
    const std::string entry = home.at(".config/autostart/fleetwise.desktop");
    const std::unique_ptr<LoginStart> login = startOf(home, "/bin/sh");
};

TEST_F(LoginStartTest, isSwitchedOnAndOff) {
    EXPECT_FALSE(login->isOn());
    EXPECT_TRUE(login->set(false));
    ASSERT_TRUE(login->set(true));
    EXPECT_TRUE(login->isOn());
    EXPECT_TRUE(login->set(true));
    EXPECT_TRUE(login->set(false));
    EXPECT_FALSE(login->isOn());
    EXPECT_FALSE(std::filesystem::exists(entry));
}

TEST_F(LoginStartTest, namesItsProgramAsEntriesWantIt) {
    struct Case {
        const char* program;
        const char* written;
    };
    for (const auto& [program, written] : {
             Case{"/fleetwise", R"(/fleetwise")"},
             Case{"/my tools/fleetwise", R"(/my tools/fleetwise")"},
             Case{"/50%/fleetwise", R"(/50%%/fleetwise")"},
             Case{"/$a`b\"/fleetwise", R"(/\\$a\\`b\\"/fleetwise")"},
             Case{"/a\\b/fleetwise", R"(/a\\\\b/fleetwise")"},
             Case{"/a\nb/fleetwise", R"(/a\nb/fleetwise")"},
         }) {
        home.write(program + 1, "");
        ASSERT_TRUE(startOf(home, home.path() + program)->set(true));
        const std::string expected = "\nExec=env " + std::string(startsHiddenVariable) + "=1 \"" +
                                     home.path() + written + '\n';
        EXPECT_NE(contentsOf(entry).find(expected), std::string::npos) << contentsOf(entry);
        EXPECT_TRUE(login->isOn());
    }
}

TEST_F(LoginStartTest, knowsEntriesThatAreSwitchedOff) {
    struct Case {
        const char* contents;
        bool isOn;
    };
    for (const auto& [contents, isOn] : {
             Case{"[Desktop Entry]\nExec=fleetwise\n", true},
             Case{"[Desktop Entry]\nExec = fleetwise\nX-GNOME-Autostart-enabled = false", false},
             Case{"[Desktop Entry]\nHidden=true\nExec=fleetwise\n", false},
             Case{"[Desktop Entry]\nExec=fleetwise\n[Other]\nHidden=true\n", true},
             Case{"[Other]\nExec=fleetwise\n", false},
             Case{"[Desktop Entry]\nExec=fleetwise\nTryExec=/gone/fleetwise\n", false},
             Case{"", false},
         }) {
        home.write(".config/autostart/fleetwise.desktop", contents);
        EXPECT_EQ(login->isOn(), isOn) << contents;
    }
    EXPECT_TRUE(login->set(true));
    EXPECT_TRUE(login->isOn());
}

TEST_F(LoginStartTest, leavesAloneWhatIsNoFile) {
    const std::string own = home.write("dotfiles/fleetwise.desktop", "[Desktop Entry]\nExec=other");
    home.makeDirectory(".config/autostart");
    home.makeLink(".config/autostart/fleetwise.desktop", own);
    for (const bool isOn : {true, false}) {
        const auto outcome = login->set(isOn);
        ASSERT_FALSE(outcome);
        EXPECT_NE(outcome.error().find(entry), std::string::npos);
    }
    EXPECT_EQ(contentsOf(own), "[Desktop Entry]\nExec=other");
    EXPECT_TRUE(std::filesystem::is_symlink(entry));
}

TEST_F(LoginStartTest, tellsWhyTheEntryCannotBeWritten) {
    home.write(".config/autostart", "no folder");
    const auto outcome = login->set(true);
    ASSERT_FALSE(outcome);
    EXPECT_NE(outcome.error().find(entry), std::string::npos);
}

}  // namespace
}  // namespace fleetwise::testing
