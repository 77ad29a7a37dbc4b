// Windows of a screen without a monitor, kept by a window manager as users have it.

#include "platform/event_loop.h"
#include "platform/host_window_focus.h"
#include "platform/peer_program.h"
#include "support/temporary_directory.h"

#include <xcb/xcb.h>

#include <cstdlib>
#include <optional>

namespace fleetwise::testing {
namespace {

class WindowFocusTest : public EventLoopTest {
protected:
    void SetUp() override {
        if (!isInstalled("Xvfb") || !isInstalled("openbox"))
            GTEST_SKIP() << "Xvfb or openbox is not installed";
        screen.emplace("Xvfb", std::vector<std::string>{"-displayfd", "1", "-nolisten", "tcp"},
                       std::map<std::string, std::string>{});
        const std::string display = ":" + screen->nextLine();
        ::setenv("DISPLAY", display.c_str(), 1);
        ::unsetenv("WAYLAND_DISPLAY");
        manager.emplace(
            "openbox", std::vector<std::string>{"--sm-disable"},
            std::map<std::string, std::string>{{"DISPLAY", display}, {"HOME", home.path()}});
        connection = xcb_connect(nullptr, nullptr);
    }

    void TearDown() override {
        if (connection != nullptr) xcb_disconnect(connection);
        ::unsetenv("DISPLAY");
    }

    /// A window that says it is of this process.
    xcb_window_t openWindow(std::uint32_t process) {
        const auto* display = xcb_setup_roots_iterator(xcb_get_setup(connection)).data;
        const xcb_window_t window = xcb_generate_id(connection);
        xcb_create_window(connection, XCB_COPY_FROM_PARENT, window, display->root, 0, 0, 100, 100,
                          0, XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, 0, nullptr);
        constexpr std::string_view name = "_NET_WM_PID";
        auto* atom = xcb_intern_atom_reply(
            connection, xcb_intern_atom(connection, 0, name.size(), name.data()), nullptr);
        xcb_change_property(connection, XCB_PROP_MODE_REPLACE, window, atom->atom,
                            XCB_ATOM_CARDINAL, 32, 1, &process);
        std::free(atom);
        xcb_map_window(connection, window);
        xcb_flush(connection);
        return window;
    }

    /// Whether it is so at some time: the focus passes through others while windows open.
    bool becomesFocused(const FocusedWindow& expected) {
        bool wasSeen = false;
        return waitUntil([&] { return wasSeen = wasSeen || focus->focused() == expected; });
    }

    TemporaryDirectory home;
    std::optional<PeerProgram> screen;
    std::optional<PeerProgram> manager;
    xcb_connection_t* connection = nullptr;
    std::unique_ptr<WindowFocus> focus = makeWindowFocus();
};

TEST_F(WindowFocusTest, raisesAndTellsTheWindowInFront) {
    EXPECT_EQ(focus->focused(), std::nullopt);
    openWindow(4711);
    EXPECT_TRUE(waitUntil([&] { return focus->raise({99, 4711}).has_value(); }));
    EXPECT_TRUE(becomesFocused({.process = 4711, .isOnlyOne = true}));
    openWindow(4712);
    const xcb_window_t second = openWindow(4712);
    EXPECT_TRUE(waitUntil([&] { return focus->raise({4712, 4711}).has_value(); }));
    EXPECT_TRUE(becomesFocused({.process = 4712, .isOnlyOne = false}));
    EXPECT_TRUE(focus->raise({4711, 4712}));
    EXPECT_TRUE(becomesFocused({.process = 4711, .isOnlyOne = true}));
    EXPECT_EQ(focus->raise({99}).error(), WindowFocusFailure::noWindow);

    xcb_destroy_window(connection, second);
    xcb_flush(connection);
    const FocusedWindow first{.process = 4712, .isOnlyOne = true};
    EXPECT_TRUE(waitUntil([&] { return focus->raise({4712}) && focus->focused() == first; }));
}

}  // namespace
}  // namespace fleetwise::testing
