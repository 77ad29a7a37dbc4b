#pragma once

#include "app/command_line.h"

#include <string>

namespace fleetwise {

/// How a job on the command line ended.
struct JobResult {
    int exitStatus = 0;
    std::string output;  ///< for standard output
    std::string errors;  ///< for standard error
};

/// Carries out any job but the application itself. Shows nothing on a display.
JobResult runJob(const Command& command, int& argumentCount, char** arguments);

}  // namespace fleetwise
