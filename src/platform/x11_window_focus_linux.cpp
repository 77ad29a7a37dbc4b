#include "platform/host_window_focus.h"

#include <xcb/xcb.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <map>
#include <string_view>
#include <utility>

namespace fleetwise {

namespace {

/// In 32-bit units; a desktop has less of anything that is read here.
constexpr std::uint32_t maximumValues = 4096;

struct Disconnect {
    void operator()(xcb_connection_t* connection) const { xcb_disconnect(connection); }
};
struct Free {
    void operator()(void* reply) const { std::free(reply); }
};
template <typename Reply>
using ReplyOf = std::unique_ptr<Reply, Free>;

/// What window managers agreed on (Extended Window Manager Hints 1.5).
struct Atoms {
    xcb_atom_t supported = XCB_NONE;
    xcb_atom_t clientListStacking = XCB_NONE;  ///< bottom to top
    xcb_atom_t processId = XCB_NONE;
    xcb_atom_t activeWindow = XCB_NONE;
    xcb_atom_t currentDesktop = XCB_NONE;
    xcb_atom_t windowDesktop = XCB_NONE;
};

/// A connection to the display of $DISPLAY. Windows may vanish at any time: what they are asked
/// for is then empty.
class Display {
public:
    Display() : connection(xcb_connect(nullptr, &screenNumber)) {
        if (!isOpen()) return;
        auto screens = xcb_setup_roots_iterator(xcb_get_setup(connection.get()));
        for (; screens.rem > 1 && screenNumber > 0; --screenNumber)
            xcb_screen_next(&screens);
        root = screens.data->root;
        internAtoms();
    }

    bool isOpen() const { return xcb_connection_has_error(connection.get()) == 0; }

    /// Whether the window manager raises windows when a program asks for it.
    bool canActivate() const {
        const auto supported = values(ask(root, atoms.supported, XCB_ATOM_ATOM));
        return std::find(supported.begin(), supported.end(), atoms.activeWindow) != supported.end();
    }

    /// The windows of each process that has one, bottom to top.
    std::map<std::int32_t, std::vector<xcb_window_t>> windowsByProcess() const {
        const auto windows = values(ask(root, atoms.clientListStacking, XCB_ATOM_WINDOW));
        std::vector<xcb_get_property_cookie_t> questions;
        questions.reserve(windows.size());
        for (const xcb_window_t window : windows)
            questions.push_back(ask(window, atoms.processId, XCB_ATOM_CARDINAL));
        std::map<std::int32_t, std::vector<xcb_window_t>> found;
        for (std::size_t index = 0; index < windows.size(); ++index) {
            const auto process = values(questions[index]);
            if (!process.empty())
                found[static_cast<std::int32_t>(process.front())].push_back(windows[index]);
        }
        return found;
    }

    /// XCB_NONE where none has the keyboard, which under Wayland includes all that X11 does not
    /// know of.
    xcb_window_t activeWindow() const {
        const auto active = values(ask(root, atoms.activeWindow, XCB_ATOM_WINDOW));
        return active.empty() ? XCB_NONE : active.front();
    }

    /// Asks the window manager as a pager does: for the user, who wants the window now. It
    /// restores the window where it is minimised; not all change to its desktop by themselves.
    void activate(xcb_window_t window) const {
        constexpr std::uint32_t fromPager = 2;
        constexpr std::uint32_t allDesktops = 0xFFFFFFFF;
        const auto desktop = values(ask(window, atoms.windowDesktop, XCB_ATOM_CARDINAL));
        const auto current = values(ask(root, atoms.currentDesktop, XCB_ATOM_CARDINAL));
        if (!desktop.empty() && desktop.front() != allDesktops && desktop != current)
            send(root, atoms.currentDesktop, {desktop.front(), XCB_CURRENT_TIME});
        send(window, atoms.activeWindow, {fromPager, XCB_CURRENT_TIME});
        // Its answer comes when the messages have arrived.
        const ReplyOf<xcb_get_input_focus_reply_t> arrived(xcb_get_input_focus_reply(
            connection.get(), xcb_get_input_focus(connection.get()), nullptr));
    }

private:
    void internAtoms() {
        const std::array<std::pair<std::string_view, xcb_atom_t*>, 6> names{{
            {"_NET_SUPPORTED", &atoms.supported},
            {"_NET_CLIENT_LIST_STACKING", &atoms.clientListStacking},
            {"_NET_WM_PID", &atoms.processId},
            {"_NET_ACTIVE_WINDOW", &atoms.activeWindow},
            {"_NET_CURRENT_DESKTOP", &atoms.currentDesktop},
            {"_NET_WM_DESKTOP", &atoms.windowDesktop},
        }};
        for (const auto& [name, atom] : names) {
            const auto question = xcb_intern_atom(
                connection.get(), 0, static_cast<std::uint16_t>(name.size()), name.data());
            const ReplyOf<xcb_intern_atom_reply_t> reply(
                xcb_intern_atom_reply(connection.get(), question, nullptr));
            if (reply) *atom = reply->atom;
        }
    }

    /// A message about `window` to the window manager.
    void send(xcb_window_t window, xcb_atom_t type,
              const std::array<std::uint32_t, 2>& data) const {
        xcb_client_message_event_t message{};
        message.response_type = XCB_CLIENT_MESSAGE;
        message.format = 32;
        message.window = window;
        message.type = type;
        std::copy(data.begin(), data.end(), message.data.data32);
        const void* event = &message;
        xcb_send_event(connection.get(), 0, root,
                       XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT,
                       static_cast<const char*>(event));
    }

    xcb_get_property_cookie_t ask(xcb_window_t window, xcb_atom_t property, xcb_atom_t type) const {
        return xcb_get_property(connection.get(), 0, window, property, type, 0, maximumValues);
    }

    std::vector<std::uint32_t> values(xcb_get_property_cookie_t question) const {
        const ReplyOf<xcb_get_property_reply_t> reply(
            xcb_get_property_reply(connection.get(), question, nullptr));
        if (!reply || reply->format != 32) return {};
        const auto* first = static_cast<const std::uint32_t*>(xcb_get_property_value(reply.get()));
        return {first, first + reply->value_len};
    }

    int screenNumber = 0;
    std::unique_ptr<xcb_connection_t, Disconnect> connection;
    xcb_window_t root = XCB_NONE;
    Atoms atoms;
};

bool isSet(const char* variable) {
    const char* value = std::getenv(variable);
    return value != nullptr && *value != '\0';
}

/// Connects anew each time: it is seldom asked, and so no display is held open.
class X11WindowFocus final : public WindowFocus {
public:
    tl::expected<void, WindowFocusFailure> raise(
        const std::vector<std::int32_t>& processes) override {
        if (!isSet("DISPLAY")) return tl::unexpected(WindowFocusFailure::notAllowed);
        const Display display;
        if (!display.isOpen() || !display.canActivate())
            return tl::unexpected(WindowFocusFailure::notAllowed);
        const auto windows = display.windowsByProcess();
        for (const std::int32_t process : processes) {
            const auto window = windows.find(process);
            if (window == windows.end()) continue;
            display.activate(window->second.back());
            return {};
        }
        // Under Wayland the windows of most programs are none that X11 knows of.
        return tl::unexpected(isSet("WAYLAND_DISPLAY") ? WindowFocusFailure::notAllowed
                                                       : WindowFocusFailure::noWindow);
    }

    std::optional<FocusedWindow> focused() override {
        if (!isSet("DISPLAY")) return {};
        const Display display;
        if (!display.isOpen()) return {};
        const xcb_window_t active = display.activeWindow();
        for (const auto& [process, windows] : display.windowsByProcess()) {
            if (std::ranges::find(windows, active) == windows.end()) continue;
            return FocusedWindow{.process = process, .isOnlyOne = windows.size() == 1};
        }
        return {};
    }
};

}  // namespace

std::unique_ptr<WindowFocus> makeWindowFocus() {
    return std::make_unique<X11WindowFocus>();
}

}  // namespace fleetwise
