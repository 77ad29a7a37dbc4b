#pragma once

#include "hook/bounded_list.h"

#include <optional>
#include <string_view>

namespace fleetwise::hook {

/// What the agent says about a tool's call; texts it does not give are empty.
struct ToolInput {
    std::string_view description;
    std::string_view command;
    std::string_view filePath;  ///< of a file or notebook
    std::string_view pattern;   ///< or a search's query
    std::string_view url;
    std::string_view plan;      ///< offered for approval
    std::string_view question;  ///< the first of those asked
};

/// What a tool answered, as far as it outlives the call.
struct ToolResponse {
    std::string_view backgroundTaskId;   ///< of a command left running
    std::string_view taskId;             ///< of a watch, but other tools have such a key too
    std::optional<double> scheduledFor;  ///< milliseconds since 1970
    std::optional<double> nextFireAt;    ///< milliseconds since 1970; the earliest one named
};

/// One entry of an event's "background_tasks".
struct BackgroundTask {
    std::string_view id;
    std::string_view type;  ///< "shell", "subagent", "monitor" or others
    std::string_view status;
    std::string_view description;
    std::string_view command;
};

/// One event of an agent as it arrives on standard input, with the keys that matter here. All
/// texts are views into the payload, as long as the agent wrote them; an empty one means that the
/// key is missing.
struct HookEvent {
    static constexpr std::size_t taskLimit = 512;

    std::string_view name;  ///< "Stop" and so on, from the command line
    std::string_view sessionId;
    std::string_view transcriptPath;
    std::string_view cwd;
    std::string_view permissionMode;
    std::string_view agentId;  ///< of the subagent that the event comes from
    std::string_view source;   ///< of SessionStart
    std::string_view trigger;  ///< of PreCompact and PostCompact
    std::string_view prompt;
    std::string_view toolName;
    ToolInput toolInput;
    ToolResponse toolResponse;
    std::optional<double> durationMs;  ///< how long a tool ran, without the wait for permission
    bool isInterrupt = false;
    std::string_view message;
    std::string_view notificationType;
    std::string_view lastAssistantMessage;
    std::string_view error;  ///< of StopFailure: the error's code
    bool listsBackgroundTasks = false;
    BoundedList<BackgroundTask, taskLimit> backgroundTasks;
    bool hasSessionCrons = false;  ///< at least one
};

}  // namespace fleetwise::hook
