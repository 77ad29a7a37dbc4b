#pragma once

#include <string_view>

namespace fleetwise {

/// The last part of a folder's path, as projects are called by; the whole where it has none.
inline std::string_view folderName(std::string_view path) {
    const auto end = path.find_last_not_of('/');
    if (end == std::string_view::npos) return path;
    path = path.substr(0, end + 1);
    return path.substr(path.find_last_of('/') + 1);
}

}  // namespace fleetwise
