#pragma once

#include "fleet/fleet_snapshot.h"
#include "fleet/session_details_reader.h"
#include "sources/process_tree.h"

namespace fleetwise {

/// The sources of this machine and this user, with the stores that a process needs once.
class MachineSources {
public:
    MachineSources();

    FleetSnapshot::Sources sources();

    SessionDetailsReader detailsReader();

private:
    ProcessTree processTree;
    TranscriptReader transcripts;
    TaskListStore tasks;
    BackgroundTaskStore backgroundTasks;
    GitStore git;
    CodexRollouts rollouts;
    CodexProcesses codexProcesses;
};

}  // namespace fleetwise
