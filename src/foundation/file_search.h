#pragma once

#include "foundation/directory.h"
#include "foundation/skip_tally.h"

#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

namespace fleetwise {

/// A file as a search came upon it.
struct FoundFile {
    std::string path;
    std::string name;  ///< without its folder
    FileStamp stamp;
};

/// The regular files in `root` and in the folders below it whose name begins with `prefix` and ends
/// in one of `extensions`, in no particular order. What has such a name and is no folder either is
/// counted in `skipped`; links are not followed. A folder that is missing or cannot be listed holds
/// nothing.
std::vector<FoundFile> findRegularFiles(const std::string& root, std::string_view prefix,
                                        std::initializer_list<std::string_view> extensions,
                                        SkipTally& skipped);

}  // namespace fleetwise
