#pragma once

#include <string>
#include <vector>

namespace fleetwise {

/// Starts other programs.
class ProcessLauncher {
public:
    ProcessLauncher() = default;
    ProcessLauncher(const ProcessLauncher&) = delete;
    ProcessLauncher& operator=(const ProcessLauncher&) = delete;
    virtual ~ProcessLauncher() = default;

    /// Starts the program `command.front()`, found on PATH unless it is a path, with the rest as
    /// its arguments: without a shell, in a session of its own, and living on when this program
    /// ends. Whether it could be started.
    virtual bool startDetached(const std::vector<std::string>& command) = 0;
};

}  // namespace fleetwise
