#pragma once

#include "foundation/date.h"

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

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

    /// The ids, ascending, of this user's processes whose program's file has one of these names.
    /// Whether that file has since been replaced does not matter. A process that hides its program
    /// is known by the name that the system has for it.
    virtual std::vector<std::int32_t> processesOf(
        std::span<const std::string_view> fileNames) const = 0;

    /// When it started by the clock on the wall; up to a second too early.
    virtual std::optional<Date> startedAt(std::int32_t pid) const = 0;

    /// The full path of its working directory, also of one that has since been removed.
    virtual std::optional<std::string> workingDirectory(std::int32_t pid) const = 0;

    /// The full paths of what it holds open (files, but also folders and devices), in the system's
    /// order and as often as it opened them. What has no name or was removed is left out.
    virtual std::vector<std::string> openFiles(std::int32_t pid) const = 0;

    /// The machine this program runs on.
    static const ProcessTable& system();
};

}  // namespace fleetwise
