#pragma once

#include "foundation/brand.h"

#include <tl/expected.hpp>

#include <string>
#include <string_view>
#include <system_error>

namespace fleetwise {

/// The fixed locations, all below the user's home folder.
class Paths {
public:
    /// $HOME as it was at the first call, or what setHome put in its place.
    static std::string home();

    /// For tests and for tools that look at another home.
    static void setHome(std::string home);

    static std::string stateDir();           ///< ~/.claude/fleetwise: everything of our own
    static std::string statusDir();          ///< the hook's status files, in the state folder
    static std::string installedHook();      ///< the installed hook program
    static std::string hostsFile();          ///< the host applications remembered
    static std::string stallsFile();         ///< the recorded stalls of the main thread
    static std::string attentionLogFile();   ///< how long sessions waited for the user
    static std::string pricesFile();         ///< the prices that were last fetched
    static std::string archiveIndexFile();   ///< the titles and prompts of past sessions
    static std::string costIndexFile();      ///< what was read about cost, to be read only once
    static std::string usageSamplesFile();   ///< the quota figures that Claude Code was told
    static std::string settingsFile();       ///< Claude Code's user settings
    static std::string sessionsDir();        ///< Claude Code's registry of running sessions
    static std::string projectsDir();        ///< Claude Code's transcripts
    static std::string tasksDir();           ///< Claude Code's task lists
    static std::string promptHistoryFile();  ///< Claude Code's prompt history
    static std::string claudeConfigurationFile();  ///< ~/.claude.json, Claude Code's own state
    static std::string desktopCodeSessions();  ///< the desktop app's session metadata, see below
    static std::string usageHistoryFile();     ///< the desktop app's history of the plan's usage
    static std::string codexDir();             ///< Codex's own folder
    static std::string goalsFile();            ///< Codex's database of goals

    // The desktop app keeps its files in ~/Library/Application Support/Claude, and where there is
    // no such folder in $XDG_CONFIG_HOME/Claude (~/.config/Claude).

    /// Creates the state folder and its "status" folder, mode 0700.
    static tl::expected<void, std::error_code> ensureStateDirectories();
};

}  // namespace fleetwise
