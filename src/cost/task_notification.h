#pragma once

#include "sources/task_ending.h"

#include <optional>
#include <string>
#include <string_view>

namespace fleetwise {

/// What Claude Code tells the model about one of its background tasks. Only what reports an end
/// is one; a watch's events are not.
struct TaskNotification {
    std::string taskId;
    TaskEnding ending;  ///< without its time

    /// Whether `prompt` is written as a notification, of an end or of anything else.
    static bool begins(std::string_view prompt);

    /// Reads a prompt of the form
    /// "<task-notification>\n<task-id>b2xnztr8e</task-id>…<status>completed</status>\n
    /// <summary>Background command "x" completed (exit code 0)</summary>…". A completed command
    /// with another exit code than 0 has failed.
    static std::optional<TaskNotification> parse(std::string_view prompt);
};

}  // namespace fleetwise
