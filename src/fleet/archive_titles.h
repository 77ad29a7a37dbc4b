#pragma once

#include "foundation/file_stamp.h"

#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>

namespace fleetwise {

/// What was read of a session's file to list the session.
struct ArchiveTitle {
    FileStamp stamp;    ///< of the file when it was read
    std::string title;  ///< these may all be empty
    std::string prompt;
    std::string cwd;
    std::string model;
    std::string parent;      ///< the session that a fork continues a copy of
    bool isDesktop = false;  ///< the agent's desktop app wrote it
    bool isBranch = false;   ///< a subagent's, which is no session of its own

    bool operator==(const ArchiveTitle&) const = default;
};

/// By the file's path.
using ArchiveTitles = std::unordered_map<std::string, ArchiveTitle>;

/// The text of the file that keeps them: one JSON object with
///   "version"  1
///   "files"    path → {"modified" in nanoseconds since 1970, "size", "title", "prompt", "cwd",
///              "model", "parent", "isDesktop", "isBranch"}, without what is empty or false.
std::string encodeArchiveTitles(const ArchiveTitles& titles);

/// What such a text holds; nothing where it is damaged or of another version.
std::optional<ArchiveTitles> decodeArchiveTitles(std::string_view text);

}  // namespace fleetwise
