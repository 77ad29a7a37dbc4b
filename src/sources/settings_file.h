#pragma once

#include "foundation/date.h"
#include "foundation/json.h"
#include "sources/file_failure.h"

#include <tl/expected.hpp>

#include <optional>
#include <string>
#include <vector>

namespace fleetwise {

/// Where the settings as they were before a change are kept; nothing where there were none.
struct SettingsBackup {
    std::optional<std::string> path;
};

/// Claude Code's user settings as they were when they were read. They are the user's own to place:
/// a link in their place is followed to its end, even where that does not exist yet.
class SettingsFile {
public:
    /// A missing file is one without contents. A circle of links, a FIFO, a folder and a file that
    /// cannot be read are failures.
    static tl::expected<SettingsFile, FileFailure> read(const std::string& path);

    /// By parseSettings; nothing where there is no file or it is corrupt.
    std::optional<Json> document() const;

    /// Copies what was read, byte for byte, to a new file in `backupFolder`, which is created where
    /// it is missing; then replaces the settings, whose mode stays as it was. Where the copy fails
    /// nothing is replaced. A link stays one.
    tl::expected<SettingsBackup, FileFailure> write(const Json& document,
                                                    const std::string& backupFolder,
                                                    Date now) const;

    /// The copies in `backupFolder`, the latest first; full paths.
    static std::vector<std::string> backups(const std::string& backupFolder);

private:
    tl::expected<SettingsBackup, FileFailure> backUp(const std::string& folder, Date now) const;

    std::string target;                   ///< with links followed
    std::optional<std::string> contents;  ///< nothing where there is no file
};

}  // namespace fleetwise
