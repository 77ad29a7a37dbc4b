#pragma once

#include "app/self_test.h"

#include <string>
#include <vector>

namespace fleetwise {

/// What the self-test is told about this machine and user.
struct MachineConditions {
    std::string stateDirectory;
    std::string statusDirectory;
    bool hooksInstalled = false;
    bool hookIsCurrent = true;
    bool reachesSessionBus = true;
    bool hasNotificationService = true;
};

/// Whether this program finds on the machine what it needs. Missing files are as good as sound
/// ones; what only the user can change is noted.
std::vector<Check> machineChecks(const MachineConditions& conditions);

}  // namespace fleetwise
