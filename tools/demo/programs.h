#pragma once

#include "foundation/file_descriptor.h"

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

/// How a program is started.
struct Launch {
    std::vector<std::string> command;  ///< the program's path first
    std::vector<std::string> environment;
    int input = -1;                ///< its standard input; −1: that of this process
    std::string workingDirectory;  ///< empty: that of this process
    std::string openFile;          ///< held open for writing all the while; may be empty
};

/// A pipe that no started program inherits, but as its standard input.
struct Pipe {
    FileDescriptor reading;
    FileDescriptor writing;

    static tl::expected<Pipe, std::error_code> make();
};

/// How a program ended: its exit status, or 128 and the signal's number.
using ExitStatus = int;

/// Runs the program with `input` on its standard input and waits for its end. SIGPIPE has to be
/// ignored: the program may not read all.
tl::expected<ExitStatus, std::error_code> run(Launch launch, const std::string& input);

/// A program that runs beside this one; it is ended with this object.
class RunningProgram {
public:
    static tl::expected<RunningProgram, std::error_code> start(Launch launch);

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
