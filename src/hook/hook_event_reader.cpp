#include "hook/hook_event_reader.h"

#include "foundation/json_surrogates.h"
#include "hook/json_fields.h"
#include "hook/json_walk.h"
#include "hook/long_texts.h"
#include "hook/parser_padding.h"

#include <algorithm>

namespace fleetwise::hook {

namespace {

template <typename Owner>
using TextField = JsonField<Owner, std::string_view>;

constexpr TextField<HookEvent> eventFields[] = {
    {"session_id", &HookEvent::sessionId},
    {"transcript_path", &HookEvent::transcriptPath},
    {"cwd", &HookEvent::cwd},
    {"permission_mode", &HookEvent::permissionMode},
    {"agent_id", &HookEvent::agentId},
    {"source", &HookEvent::source},
    {"trigger", &HookEvent::trigger},
    {"prompt", &HookEvent::prompt},
    {"tool_name", &HookEvent::toolName},
    {"message", &HookEvent::message},
    {"notification_type", &HookEvent::notificationType},
    {"last_assistant_message", &HookEvent::lastAssistantMessage},
    {"error", &HookEvent::error},
};

constexpr TextField<ToolInput> inputFields[] = {
    {"description", &ToolInput::description},
    {"command", &ToolInput::command},
    {"file_path", &ToolInput::filePath},
    {"notebook_path", &ToolInput::filePath},
    {"pattern", &ToolInput::pattern},
    {"query", &ToolInput::pattern},
    {"url", &ToolInput::url},
    {"plan", &ToolInput::plan},
};

constexpr TextField<ToolResponse> responseFields[] = {
    {"backgroundTaskId", &ToolResponse::backgroundTaskId},
    {"taskId", &ToolResponse::taskId},
};

constexpr TextField<BackgroundTask> taskFields[] = {
    {"id", &BackgroundTask::id},           {"type", &BackgroundTask::type},
    {"status", &BackgroundTask::status},   {"description", &BackgroundTask::description},
    {"command", &BackgroundTask::command},
};

class EventSink {
public:
    explicit EventSink(HookEvent& target) : event(target) {}

    void begin(const JsonPath& path) {
        if (path.is("background_tasks")) event.listsBackgroundTasks = true;
        if (path.is("background_tasks", "")) task = event.backgroundTasks.add({});
        if (path.is("session_crons", "")) event.hasSessionCrons = true;
    }

    void text(const JsonPath& path, std::string_view value) {
        if (path.size() == 1) assignField(eventFields, path[0], value, event);
        if (path.size() == 2 && path[0] == "tool_input") {
            assignField(inputFields, path[1], value, event.toolInput);
        }
        if (path.size() == 2 && path[0] == "tool_response") {
            assignField(responseFields, path[1], value, event.toolResponse);
        }
        if (path.size() == 3 && path[0] == "background_tasks" && task != nullptr) {
            assignField(taskFields, path[2], value, *task);
        }
        if (path.is("tool_input", "questions", "", "question") &&
            event.toolInput.question.empty()) {
            event.toolInput.question = value;
        }
    }

    void number(const JsonPath& path, double value) {
        if (path.is("duration_ms")) event.durationMs = value;
        auto& response = event.toolResponse;
        if (path.is("tool_response", "scheduledFor")) response.scheduledFor = value;
        if (path.is("tool_response", "nextFireAt") ||
            path.is("tool_response", "jobs", "", "nextFireAt")) {
            response.nextFireAt = std::min(value, response.nextFireAt.value_or(value));
        }
    }

    void truth(const JsonPath& path, bool value) {
        if (path.is("is_interrupt")) event.isInterrupt = value;
    }

private:
    HookEvent& event;
    BackgroundTask* task = nullptr;  ///< the one being read
};

void mendLoneSurrogates(std::span<char> payload) {
    const std::string_view text(payload.data(), payload.size());
    for (auto at = findLoneSurrogate(text); at != std::string_view::npos;
         at = findLoneSurrogate(text, at + replacementEscape.size())) {
        std::copy(replacementEscape.begin(), replacementEscape.end(),
                  payload.begin() + static_cast<std::ptrdiff_t>(at));
    }
}

}  // namespace

bool readHookEvent(std::span<char> payload, HookEvent& event) {
    const std::span<char> text = cutLongTexts(payload);
    const auto rest = payload.subspan(text.size());
    std::fill_n(rest.begin(), std::min(rest.size(), parserPadding), '\0');
    mendLoneSurrogates(text);
    EventSink sink(event);
    return walkJsonInPlace(text.data(), sink);
}

}  // namespace fleetwise::hook
