#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace fleetwise {

/// The running processes of the machine, as far as we look at them. Any thread.
class ProcessTable {
public:
    struct Process {
        std::int32_t parent = 0;
        /// When it started, in the system's own unit: together with the id it tells a process
        /// from a later one that was given the same id. On Linux field 22 of /proc/PID/stat.
        std::uint64_t start = 0;

        bool operator==(const Process&) const = default;
    };

    virtual ~ProcessTable() = default;

    /// Whether a process with this id exists, also one of another user.
    virtual bool exists(std::int32_t pid) const = 0;

    virtual std::optional<Process> process(std::int32_t pid) const = 0;

    /// The full path of its program; nothing where the system does not tell.
    virtual std::optional<std::string> executable(std::int32_t pid) const = 0;

    /// The unit the session manager put it into, such as "app-org.kde.konsole-4711.scope".
    virtual std::optional<std::string> applicationScope(std::int32_t pid) const = 0;

    /// The machine this program runs on.
    static const ProcessTable& system();
};

}  // namespace fleetwise
