#pragma once

#include "foundation/date.h"

#include <optional>
#include <string>

namespace fleetwise {

/// A shell command that an agent runs in the background.
struct BackgroundTask {
    enum class Status {
        running,
        completed,
        failed,
        aborted,   ///< ended with its agent, its output is there
        orphaned,  ///< its agent is gone and nothing of it is left
    };

    std::string id;
    std::optional<std::string> command;
    std::optional<Date> startedAt;
    std::optional<Date> endedAt;    ///< nothing while it runs
    std::optional<int> exitStatus;  ///< where the agent told it
    Status status = Status::running;

    bool operator==(const BackgroundTask&) const = default;
};

}  // namespace fleetwise
