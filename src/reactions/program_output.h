#pragma once

#include <tl/expected.hpp>

#include <chrono>
#include <string>
#include <vector>

namespace fleetwise {

enum class ProgramFailure {
    failed,    ///< it could not be started, or ended with an error
    noAnswer,  ///< it did not end in time, or had too much to say
};

/// Asks other programs.
class ProgramOutput {
public:
    ProgramOutput() = default;
    ProgramOutput(const ProgramOutput&) = delete;
    ProgramOutput& operator=(const ProgramOutput&) = delete;
    virtual ~ProgramOutput() = default;

    /// Runs the program `command.front()`, found on PATH unless it is a path, with the rest as its
    /// arguments and without a shell. Waits for its end, but no longer than `limit`: then it is
    /// killed. Gives what it printed.
    virtual tl::expected<std::string, ProgramFailure> run(const std::vector<std::string>& command,
                                                          std::chrono::milliseconds limit) = 0;
};

}  // namespace fleetwise
