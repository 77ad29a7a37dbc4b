#pragma once

#include <tl/expected.hpp>

#include <sys/types.h>

#include <optional>
#include <string>
#include <system_error>
#include <vector>

namespace fleetwise::demo {

/// The variables "NAME=value" of this process, with those that lead to the user's files leading
/// below `home` instead.
std::vector<std::string> environmentIn(const std::string& home);

/// How a program ended: its exit status, or 128 and the signal's number.
using ExitStatus = int;

/// Runs the program `command.front()` with `input` on its standard input and waits for its end.
/// SIGPIPE has to be ignored: the program may not read all.
tl::expected<ExitStatus, std::error_code> run(const std::vector<std::string>& command,
                                              const std::vector<std::string>& environment,
                                              const std::string& input);

/// A program that runs beside this one; it is ended with this object.
class RunningProgram {
public:
    static tl::expected<RunningProgram, std::error_code> start(
        const std::vector<std::string>& command, const std::vector<std::string>& environment);

    RunningProgram(RunningProgram&& other) noexcept;
    RunningProgram& operator=(RunningProgram&&) = delete;
    ~RunningProgram();

    /// Nothing while it runs.
    std::optional<ExitStatus> ended();

private:
    explicit RunningProgram(pid_t started) : pid(started) {}

    pid_t pid;  ///< 0: it has ended
    std::optional<ExitStatus> status;
};

}  // namespace fleetwise::demo
