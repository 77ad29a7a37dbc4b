#pragma once

#include <tl/expected.hpp>

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace fleetwise {

/// A program to start, and with what.
struct ChildCommand {
    std::string executable;  ///< a full path
    std::vector<std::string> arguments;
    /// The whole environment; nothing: this program's own.
    std::optional<std::map<std::string, std::string>> environment;
};

/// Starts programs and notices how they end. They read and write nothing, inherit no open file,
/// have a process group of their own, and live on when this program ends. Main thread only.
class ChildProcesses {
public:
    /// The exit status; 128 and the signal's number for one that a signal ended.
    using Ended = std::function<void(std::int32_t exitCode)>;

    ChildProcesses() = default;
    ChildProcesses(const ChildProcesses&) = delete;
    ChildProcesses& operator=(const ChildProcesses&) = delete;
    virtual ~ChildProcesses() = default;

    /// Starts it, or tells for the user why not. `ended` is called after this has returned, and
    /// no more once this object is destroyed.
    virtual tl::expected<void, std::string> start(const ChildCommand& command, Ended ended) = 0;
};

}  // namespace fleetwise
