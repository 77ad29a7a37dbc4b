#pragma once

#include <string>

namespace fleetwise {

/// Runs the application with its tray item and windows until the user quits it. `address` is what
/// the system started it with: empty, or an address "fleetwise://…". Where an instance runs
/// already it is brought to the front instead. Gives the exit status; without a display a message
/// on standard error and 1.
int runApplication(int& argumentCount, char** arguments, const std::string& address);

}  // namespace fleetwise
