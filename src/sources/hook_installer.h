#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>

namespace fleetwise {

/// The hook program's entries in Claude Code's user settings.
class HookInstaller {
public:
    /// The events that each need an entry.
    static constexpr std::array<std::string_view, 15> events{
        "SessionStart",  "UserPromptSubmit",  "PreToolUse",  "PostToolUse", "PostToolUseFailure",
        "Notification",  "PermissionRequest", "Elicitation", "StopFailure", "Stop",
        "SubagentStart", "SubagentStop",      "PreCompact",  "PostCompact", "SessionEnd",
    };

    /// Stands in every command of ours, where the shell takes it for a comment, and in no other.
    static constexpr std::string_view marker = "# fleetwise";

    /// Whether the settings hold an entry of ours for every event and the installed program
    /// exists. Settings that are a link are followed: they are the user's own to place.
    static bool isInstalled(const std::string& settingsFile, const std::string& installedHook);

    /// Whether the installed program is, byte for byte, the one that came with the application.
    /// With nothing to compare it to, because none came with it, it is.
    static bool isCurrent(const std::optional<std::string>& bundled, const std::string& installed);
};

}  // namespace fleetwise
