#pragma once

#include "foundation/file_stamp.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace fleetwise {

enum class FileKind { regular, directory, link, other };

/// One name in a folder, judged on the entry itself: a link is a link, wherever it points.
struct DirectoryEntry {
    std::string name;
    FileKind kind = FileKind::other;
    FileStamp stamp;  ///< filled for regular files only
};

/// The entries of the folder `path` whose names end in `suffix`, in the order the system lists
/// them, without "." and "..". A folder that is missing or cannot be listed has none.
std::vector<DirectoryEntry> listDirectory(const std::string& path, std::string_view suffix = {});

/// The entry under `path` itself; nothing where no such name exists. Costs one system call.
std::optional<DirectoryEntry> inspectFile(const std::string& path);

/// `folder` and `name` joined by one slash.
std::string joinPath(std::string_view folder, std::string_view name);

}  // namespace fleetwise
