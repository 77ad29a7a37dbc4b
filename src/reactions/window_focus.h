#pragma once

#include <tl/expected.hpp>

#include <cstdint>
#include <vector>

namespace fleetwise {

enum class WindowFocusFailure {
    notAllowed,  ///< the desktop lets no program raise the windows of others
    noWindow,    ///< none of the processes has a window
};

/// Brings windows of other programs to the front.
class WindowFocus {
public:
    WindowFocus() = default;
    WindowFocus(const WindowFocus&) = delete;
    WindowFocus& operator=(const WindowFocus&) = delete;
    virtual ~WindowFocus() = default;

    /// Raises a window of the first of the processes that has one.
    virtual tl::expected<void, WindowFocusFailure> raise(
        const std::vector<std::int32_t>& processes) = 0;
};

}  // namespace fleetwise
