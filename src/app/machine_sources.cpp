#include "app/machine_sources.h"

#include "app/environment.h"
#include "sources/desktop_entry.h"
#include "sources/paths.h"

#include <unistd.h>

namespace fleetwise {

MachineSources::MachineSources()
    : processTree(ProcessTable::system(),
                  DesktopEntry::applicationFolders(Paths::home(), environmentVariable)),
      transcripts(Paths::projectsDir()),
      tasks(Paths::tasksDir()) {}

FleetSnapshot::Sources MachineSources::sources() {
    return {.statusDirectory = Paths::statusDir(),
            .sessionsDirectory = Paths::sessionsDir(),
            .projectsDirectory = Paths::projectsDir(),
            .userId = ::getuid(),
            .processes = ProcessTable::system(),
            .processTree = processTree,
            .transcripts = transcripts,
            .tasks = tasks,
            .backgroundTasks = backgroundTasks,
            .git = git,
            .desktopSessions = {},
            .rollouts = {}};
}

}  // namespace fleetwise
