#include "platform/event_loop.h"
#include "platform/host_window_focus.h"
#include "platform/qt_process_launcher.h"
#include "support/temporary_directory.h"

#include <cstdlib>
#include <filesystem>

namespace fleetwise::testing {
namespace {

class QtProcessLauncherTest : public EventLoopTest {};

TEST_F(QtProcessLauncherTest, startsProgramsCutOffFromThisOne) {
    const TemporaryDirectory home;
    const std::string told = home.at("told");
    const std::string script =
        "files=$(readlink /proc/$$/fd/0 /proc/$$/fd/1 /proc/$$/fd/2)\n"
        "echo \"$files\" >\"$0.new\" && mv \"$0.new\" \"$0\"";
    ASSERT_TRUE(QtProcessLauncher().startDetached({"sh", "-c", script, told}));
    ASSERT_TRUE(waitUntil([&] { return std::filesystem::exists(told); }));
    EXPECT_EQ(contentsOf(told), "/dev/null\n/dev/null\n/dev/null\n");
}

TEST_F(QtProcessLauncherTest, saysWhatCannotBeStarted) {
    EXPECT_FALSE(QtProcessLauncher().startDetached({}));
    EXPECT_FALSE(QtProcessLauncher().startDetached({"/no/such/program"}));
}

TEST(WindowFocus, isNotAllowedWithoutAWindowSystem) {
    for (const char* display : {"", "unix:/no/such/display"}) {
        ::setenv("DISPLAY", display, 1);
        const auto raised = makeWindowFocus()->raise({1});
        ASSERT_FALSE(raised) << display;
        EXPECT_EQ(raised.error(), WindowFocusFailure::notAllowed) << display;
    }
}

}  // namespace
}  // namespace fleetwise::testing
