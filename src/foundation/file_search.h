#pragma once

#include "foundation/directory.h"

#include <string>
#include <string_view>
#include <vector>

namespace fleetwise {

/// A file as a search came upon it.
struct FoundFile {
    std::string path;
    std::string name;  ///< without its folder
    FileKind kind = FileKind::other;
    FileStamp stamp;  ///< filled for regular files only
};

/// Everything but folders in `root` and in the folders below it whose name begins with `prefix`.
/// Links are found, not followed. A folder that is missing or cannot be listed holds nothing. In
/// no particular order.
std::vector<FoundFile> findFiles(const std::string& root, std::string_view prefix);

}  // namespace fleetwise
