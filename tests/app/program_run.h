#pragma once

#include "support/temporary_directory.h"

#include <sys/wait.h>

#include <cstdlib>
#include <string>

namespace fleetwise::testing {

/// How a run of the program ended and what it printed.
struct ProgramRun {
    int exitStatus = -1;
    std::string output;
    std::string errors;
};

/// Runs the program, or a copy of it, with `home` as the user's home and no language set.
inline ProgramRun run(const TemporaryDirectory& home, const std::string& argument,
                      const std::string& program = FLEETWISE_PROGRAM) {
    const TemporaryDirectory printed;
    const std::string command = "env -i HOME='" + home.path() + "' '" + program + "' " + argument +
                                " >'" + printed.at("output") + "' 2>'" + printed.at("errors") + "'";
    const int status = std::system(command.c_str());
    return {.exitStatus = WEXITSTATUS(status),
            .output = contentsOf(printed.at("output")),
            .errors = contentsOf(printed.at("errors"))};
}

}  // namespace fleetwise::testing
