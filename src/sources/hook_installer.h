#pragma once

#include "sources/settings_file.h"

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

namespace fleetwise {

/// The application came without the hook program.
struct HookBinaryMissing {};

using InstallError = std::variant<HookBinaryMissing, FileFailure>;

/// The error in the interface language.
std::string installErrorText(const InstallError& error);

/// The hook program and its entries in Claude Code's user settings.
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

    struct Places {
        std::string settingsFile;                ///< Claude Code's user settings
        std::string stateDir;                    ///< takes the backups of the settings
        std::string statusDir;                   ///< where the hook program writes
        std::string installedHook;               ///< where the agent starts the hook program
        std::optional<std::string> bundledHook;  ///< what came with the application
    };

    /// Whether the settings hold an entry of ours for every event and the installed program
    /// exists. Settings that are a link are followed: they are the user's own to place.
    static bool isInstalled(const std::string& settingsFile, const std::string& installedHook);

    /// Whether the installed program is, byte for byte, the one that came with the application.
    /// With nothing to compare it to, because none came with it, it is.
    static bool isCurrent(const std::optional<std::string>& bundled, const std::string& installed);

    /// The shell command that runs the installed program for an event.
    static std::string command(std::string_view event, const std::string& installedHook);

    /// Makes the folders, installs the program and gives every event one entry of ours, behind
    /// those of others, which stay as they are. Settings that are missing or corrupt count as
    /// empty. May be repeated at any time. After an error the settings are as they were.
    static tl::expected<SettingsBackup, InstallError> install(const Places& places, Date now);

    /// Takes our entries out of the settings, with the groups and events that held nothing else.
    /// The installed program and the status files stay. Settings that are missing, corrupt or
    /// cannot be read are left alone. After an error the settings are as they were.
    static tl::expected<SettingsBackup, InstallError> uninstall(const Places& places, Date now);

    /// Copies the program to its place in one step, so that an agent that runs meanwhile never
    /// finds it missing or half written.
    static tl::expected<void, InstallError> installHookBinary(
        const std::optional<std::string>& bundled, const std::string& installed);
};

}  // namespace fleetwise
