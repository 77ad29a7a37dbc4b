#pragma once

#include <tl/expected.hpp>

#include <cstdint>
#include <optional>
#include <vector>

namespace fleetwise {

enum class WindowFocusFailure {
    notAllowed,  ///< the desktop lets no program raise the windows of others
    noWindow,    ///< none of the processes has a window
};

/// The window that has the keyboard.
struct FocusedWindow {
    std::int32_t process = 0;
    bool isOnlyOne = false;  ///< the process has no other window

    bool operator==(const FocusedWindow&) const = default;
};

/// Looks at windows of other programs and brings them to the front.
class WindowFocus {
public:
    WindowFocus() = default;
    WindowFocus(const WindowFocus&) = delete;
    WindowFocus& operator=(const WindowFocus&) = delete;
    virtual ~WindowFocus() = default;

    /// Raises a window of the first of the processes that has one.
    virtual tl::expected<void, WindowFocusFailure> raise(
        const std::vector<std::int32_t>& processes) = 0;

    /// Nothing where no window has the keyboard or the desktop does not tell.
    virtual std::optional<FocusedWindow> focused() = 0;
};

}  // namespace fleetwise
