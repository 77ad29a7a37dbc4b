#pragma once

#include <string_view>

namespace fleetwise {

/// Whether a name that came from outside, such as a session id, names a file of its folder and
/// nothing else: not empty, not "." or "..", without a slash or NUL.
inline bool isPlainFileName(std::string_view name) {
    using namespace std::string_view_literals;
    return !name.empty() && name != "." && name != ".." &&
           name.find_first_of("/\0"sv) == std::string_view::npos;
}

}  // namespace fleetwise
