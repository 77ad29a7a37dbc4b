#pragma once

#include <optional>
#include <string_view>

namespace fleetwise {

/// Whether a prompt is the agent's own notice about one of its background tasks, of its end or of
/// anything else.
bool isTaskNotice(std::string_view prompt);

/// The end of a background task as Claude Code tells it to the model:
/// "<task-notification>\n<task-id>b2xnztr8e</task-id>…<status>completed</status>\n
/// <summary>Background command "x" completed (exit code 0)</summary>…".
struct TaskEndNotice {
    std::string_view taskId;   ///< never empty
    std::string_view status;   ///< "completed", "failed", "killed" and others
    std::string_view summary;  ///< empty where there is none

    /// Views into the prompt; nothing where it is no notice, or of a task that goes on.
    static std::optional<TaskEndNotice> parse(std::string_view prompt);
};

}  // namespace fleetwise
