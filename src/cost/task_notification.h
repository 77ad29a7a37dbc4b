#pragma once

#include "sources/task_ending.h"

#include <optional>
#include <string>
#include <string_view>

namespace fleetwise {

/// What Claude Code tells the model about the end of one of its background tasks.
struct TaskNotification {
    std::string taskId;
    TaskEnding ending;  ///< without its time

    /// Reads a prompt that is a notice of an end (see TaskEndNotice). A completed command with
    /// another exit code than 0 has failed.
    static std::optional<TaskNotification> parse(std::string_view prompt);
};

}  // namespace fleetwise
