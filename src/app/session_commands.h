#pragma once

#include "fleet/session.h"
#include "monitor/settings.h"
#include "reactions/process_launcher.h"
#include "reactions/window_focus.h"
#include "sources/process_table.h"

#include <tl/expected.hpp>

#include <string>

namespace fleetwise {

/// What the user can have done to a session on this machine. What stands in the way is told in the
/// interface language.
class SessionCommands {
public:
    /// All that is given outlives this.
    SessionCommands(const Settings& settings, const ProcessTable& processes, WindowFocus& windows,
                    ProcessLauncher& launcher);

    /// Brings the window that the session runs in to the front.
    tl::expected<void, std::string> focus(const Session& session) const;

    /// Resumes the session in a terminal.
    tl::expected<void, std::string> resume(const Session& session);

private:
    std::string scriptFolder();

    const Settings& settings;
    const ProcessTable& processes;
    WindowFocus& windows;
    ProcessLauncher& launcher;
    unsigned launches = 0;
};

}  // namespace fleetwise
