#include "demo/transcript_recorder.h"

#include <algorithm>
#include <fstream>

namespace fleetwise::demo {

namespace {

constexpr std::int64_t contextAfterCompaction = 9'000;
constexpr std::int64_t largestContext = 190'000;

bool isOfSubagent(const Json& payload) {
    return payload.contains("agent_id");
}

}  // namespace

TranscriptRecorder::TranscriptRecorder(const generator::SessionBook& book, std::uint64_t seed)
    : path(book.transcriptPath),
      common{{"isSidechain", false},
             {"userType", "external"},
             {"entrypoint", book.entrypoint},
             {"cwd", book.cwd},
             {"sessionId", book.id},
             {"version", "2.1.329"},
             {"gitBranch", book.gitBranch.value_or("HEAD")}},
      random(seed),
      model(book.model.starts_with('<') ? "claude-opus-5-5" : book.model),
      contextTokens(std::max(book.contextTokens, contextAfterCompaction)) {}

void TranscriptRecorder::append(const Scene& scene, const Json& payload, Date now) {
    time = now;
    const std::string event = member<std::string>(payload, "hook_event_name").value_or("");
    if (isOfSubagent(payload)) return;
    if (event == "UserPromptSubmit") appendPrompt(scene, payload);
    if (event == "PreToolUse") appendToolUse(payload);
    if (event == "PostToolUse") appendToolResult(payload);
    if (event == "Stop") appendAnswer(payload);
    if (event == "StopFailure") appendFailure(payload);
    if (event == "PostCompact") appendCompaction();
    if (text.empty()) return;
    std::ofstream(path, std::ios::app) << text;
    text.clear();
}

void TranscriptRecorder::appendPrompt(const Scene& scene, const Json& payload) {
    const std::string prompt = payload.at("prompt");
    const bool isNotice = prompt.starts_with("<task-notification>");
    const std::string_view origin = isNotice ? "task-notification" : "human";
    if (!isNotice) lastPrompt = prompt;
    Json user = record("user");
    user["message"] = {{"role", "user"}, {"content", prompt}};
    user["permissionMode"] = payload.at("permission_mode");
    user["origin"] = {{"kind", origin}};
    user["promptSource"] = isNotice ? "system" : "typed";
    user["turnOrigin"] = origin;
    line(user);
    line({{"type", "ai-title"}, {"aiTitle", scene.title}, {"sessionId", common.at("sessionId")}});
}

void TranscriptRecorder::appendToolUse(const Json& payload) {
    appendReply({{"type", "tool_use"},
                 {"id", payload.at("tool_use_id")},
                 {"name", payload.at("tool_name")},
                 {"input", payload.at("tool_input")}},
                "tool_use");
}

void TranscriptRecorder::appendToolResult(const Json& payload) {
    Json user = record("user");
    const Json result{{"type", "tool_result"},
                      {"tool_use_id", payload.at("tool_use_id")},
                      {"content", "ok"},
                      {"is_error", false}};
    user["message"] = {{"role", "user"}, {"content", Json::array({result})}};
    user["toolUseResult"] = payload.at("tool_response");
    line(user);
}

void TranscriptRecorder::appendAnswer(const Json& payload) {
    appendReply({{"type", "text"}, {"text", payload.at("last_assistant_message")}}, "end_turn");
    Json duration = record("system");
    duration["subtype"] = "turn_duration";
    duration["durationMs"] = random.between(5'000, 90'000);
    line(duration);
    line({{"type", "last-prompt"},
          {"lastPrompt", lastPrompt},
          {"leafUuid", parent},
          {"sessionId", common.at("sessionId")}});
}

void TranscriptRecorder::appendFailure(const Json& payload) {
    Json failure = record("assistant");
    const Json content{{"type", "text"}, {"text", payload.at("last_assistant_message")}};
    failure["message"] = {{"id", random.uuid()},
                          {"type", "message"},
                          {"role", "assistant"},
                          {"model", "<synthetic>"},
                          {"stop_reason", "stop_sequence"},
                          {"content", Json::array({content})}};
    failure["error"] = payload.at("error");
    failure["isApiErrorMessage"] = true;
    line(failure);
}

void TranscriptRecorder::appendCompaction() {
    Json boundary = record("system");
    boundary["subtype"] = "compact_boundary";
    boundary["content"] = "Conversation compacted";
    boundary["compactMetadata"] = {{"trigger", "manual"},
                                   {"preTokens", contextTokens},
                                   {"postTokens", contextAfterCompaction}};
    contextTokens = contextAfterCompaction;
    line(boundary);
}

/// What the model said in one request.
void TranscriptRecorder::appendReply(const Json& content, std::string_view stopReason) {
    Json reply = record("assistant");
    reply["requestId"] = "req_01" + random.hexadecimal(16);
    reply["message"] = {{"id", "msg_01" + random.hexadecimal(16)},
                        {"type", "message"},
                        {"role", "assistant"},
                        {"model", model},
                        {"content", Json::array({content})},
                        {"stop_reason", stopReason},
                        {"stop_sequence", nullptr},
                        {"usage", usage()}};
    line(reply);
}

Json TranscriptRecorder::record(std::string_view type) {
    Json made = common;
    made["type"] = type;
    made["parentUuid"] = parent.empty() ? Json() : Json(parent);
    parent = random.uuid();
    made["uuid"] = parent;
    made["timestamp"] = internetDate(time);
    return made;
}

/// Everything said before comes from the model's cache, and the context grows until it is full.
Json TranscriptRecorder::usage() {
    const std::int64_t added = random.between(400, 3'000);
    Json used{{"input_tokens", 8},
              {"cache_creation_input_tokens", added},
              {"cache_read_input_tokens", contextTokens},
              {"output_tokens", random.between(40, 900)},
              {"cache_creation",
               {{"ephemeral_1h_input_tokens", 0}, {"ephemeral_5m_input_tokens", added}}}};
    contextTokens = std::min(contextTokens + added, largestContext);
    return used;
}

void TranscriptRecorder::line(const Json& record) {
    text += encodeJson(record) + '\n';
}

}  // namespace fleetwise::demo
