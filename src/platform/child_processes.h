#pragma once

#include "reactions/child_processes.h"

#include <memory>

namespace fleetwise {

/// The machine's own. Needs Qt's event loop.
std::unique_ptr<ChildProcesses> makeChildProcesses();

}  // namespace fleetwise
