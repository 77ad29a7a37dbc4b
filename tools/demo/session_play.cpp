#include "demo/session_play.h"

#include "foundation/directory.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace fleetwise::demo {

namespace {

bool isOneOf(std::string_view event, std::initializer_list<std::string_view> events) {
    return std::find(events.begin(), events.end(), event) != events.end();
}

bool isToolsEvent(std::string_view event) {
    return isOneOf(event, {"PreToolUse", "PostToolUse"});
}

/// The agent names files by their whole path.
void completePath(Json& payload, std::string_view key, const std::string& cwd) {
    const auto holder = payload.find(key);
    if (holder == payload.end()) return;
    if (const auto path = member<std::string>(*holder, "file_path"))
        (*holder)["file_path"] = joinPath(cwd, *path);
}

void completeWakeUp(Json& payload, Date now) {
    const auto response = payload.find("tool_response");
    if (response == payload.end()) return;
    if (const auto delay = member<double>(*response, "clampedDelaySeconds"))
        (*response)["scheduledFor"] = std::round((secondsSince1970(now) + *delay) * 1000);
}

}  // namespace

SessionPlay::SessionPlay(const generator::SessionBook& book, std::size_t firstScene,
                         std::uint64_t seed)
    : sessionId(book.id),
      cwd(book.cwd),
      transcriptPath(book.transcriptPath),
      permissionMode(book.permissionMode),
      random(seed),
      sceneIndex(firstScene % scenes().size()),
      promptId(random.uuid()) {}

const Step* SessionPlay::next() {
    if (restLeft > 0) {
        --restLeft;
        return nullptr;
    }
    if (stepIndex == scene().steps.size()) {
        // Any other scene.
        sceneIndex = (sceneIndex + 1 + random.below(scenes().size() - 1)) % scenes().size();
        stepIndex = 0;
    }
    const Step& step = scene().steps[stepIndex++];
    restLeft = step.rest;
    return &step;
}

Json SessionPlay::payload(const Step& step, Date now) {
    if (step.event == "UserPromptSubmit") promptId = random.uuid();
    if (step.event == "PreToolUse") toolUseId = "toolu_01" + random.hexadecimal(16);
    Json payload{{"session_id", sessionId},
                 {"transcript_path", transcriptPath},
                 {"cwd", cwd},
                 {"hook_event_name", step.event}};
    if (step.event != "SessionStart") payload["prompt_id"] = promptId;
    if (isToolsEvent(step.event) ||
        isOneOf(step.event, {"UserPromptSubmit", "PermissionRequest", "Stop"}))
        payload["permission_mode"] = permissionMode;
    if (isToolsEvent(step.event)) payload["tool_use_id"] = toolUseId;
    payload.update(step.members);
    completePath(payload, "tool_input", cwd);
    completePath(payload, "tool_response", cwd);
    completeWakeUp(payload, now);
    return payload;
}

}  // namespace fleetwise::demo
