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
      tasks(Paths::tasksDir()),
      codexProcesses(ProcessTable::system()) {}

FleetSnapshot::Sources MachineSources::sources() {
    return {.statusDirectory = Paths::statusDir(),
            .sessionsDirectory = Paths::sessionsDir(),
            .projectsDirectory = Paths::projectsDir(),
            .desktopDirectory = Paths::desktopCodeSessions(),
            .codexDirectory = Paths::codexDir(),
            .userId = ::getuid(),
            .processes = ProcessTable::system(),
            .processTree = processTree,
            .transcripts = transcripts,
            .tasks = tasks,
            .backgroundTasks = backgroundTasks,
            .git = git,
            .desktop = DesktopMetadataStore::shared(),
            .rollouts = rollouts,
            .codexProcesses = codexProcesses};
}

SessionDetailsReader MachineSources::detailsReader() {
    return {transcripts, tasks, Paths::codexDir()};
}

}  // namespace fleetwise
