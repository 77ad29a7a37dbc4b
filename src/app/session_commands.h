#pragma once

#include "fleet/session.h"
#include "monitor/settings.h"
#include "reactions/process_launcher.h"
#include "reactions/program_output.h"
#include "reactions/window_focus.h"
#include "sources/process_table.h"

#include <tl/expected.hpp>

#include <cstdint>
#include <string>
#include <vector>

namespace fleetwise {

/// What the user can have done to a session on this machine. What stands in the way is told in the
/// interface language.
class SessionCommands {
public:
    /// All that is given outlives this.
    SessionCommands(const Settings& settings, const ProcessTable& processes, WindowFocus& windows,
                    ProcessLauncher& launcher, ProgramOutput& programs);

    /// Brings the session to the front: its folder in the editor it runs in, its pane in the
    /// terminal that shows its tmux server, or the window it runs in.
    tl::expected<void, std::string> focus(const Session& session) const;

    /// Whether the user looks at the session just now. Only where that is certain: the window in
    /// front is the only one of its process, and of `all` no other session runs in it.
    bool isFocused(const Session& session, const std::vector<Session>& all) const;

    /// Resumes the session in a terminal.
    tl::expected<void, std::string> resume(const Session& session);

    /// The command that resumes the session, for the clipboard.
    tl::expected<std::string, std::string> resumeText(const Session& session) const;

    /// The names of the terminals that sessions can be resumed in.
    static std::vector<std::string> terminals();

private:
    bool openInEditor(const Session& session) const;
    tl::expected<void, std::string> raiseWindowOf(std::int32_t pid) const;
    std::string scriptFolder();

    const Settings& settings;
    const ProcessTable& processes;
    WindowFocus& windows;
    ProcessLauncher& launcher;
    ProgramOutput& programs;
    unsigned launches = 0;
};

}  // namespace fleetwise
