#pragma once

#include "foundation/date.h"

#include <optional>
#include <string>
#include <unordered_map>

namespace fleetwise {

/// What the Claude desktop app keeps about one of its sessions.
struct DesktopMetadata {
    std::optional<std::string> cliSessionId;  ///< Claude Code's own id of the session
    std::optional<std::string> title;
    std::optional<std::string> cwd;
    std::optional<std::string> model;
    std::optional<std::string> effort;
    std::optional<std::string> permissionMode;
    std::optional<Date> lastActivityAt;
    bool isArchived = false;
    std::optional<std::string> error;  ///< code of the last error
    std::optional<Date> errorAt;

    bool operator==(const DesktopMetadata&) const = default;
};

/// Claude Code's session id to the desktop app's metadata.
using DesktopSessions = std::unordered_map<std::string, DesktopMetadata>;

}  // namespace fleetwise
