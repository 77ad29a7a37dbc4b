#include "demo/rollout_recorder.h"

#include "foundation/atomic_file.h"
#include "generator/rollout_format.h"

#include <algorithm>
#include <filesystem>
#include <fstream>

namespace fleetwise::demo {

namespace {

constexpr std::int64_t contextWindow = 258'400;
constexpr std::int64_t firstContext = 11'000;
constexpr std::string_view instructions = "You are a coding agent.";

Json usage(std::int64_t input, std::int64_t cached, std::int64_t output, std::int64_t reasoning) {
    return {{"input_tokens", input},
            {"cached_input_tokens", cached},
            {"cache_write_input_tokens", 0},
            {"output_tokens", output},
            {"reasoning_output_tokens", reasoning},
            {"total_tokens", input + output}};
}

}  // namespace

RolloutRecorder::RolloutRecorder(generator::RolloutBook book, std::string_view inherited,
                                 std::uint64_t seed)
    : session(std::move(book)), random(seed), time(session.startedAt) {
    // What goes wrong here shows in the report as a session that is missing.
    (void)makePrivateDirectory(std::filesystem::path(session.path).parent_path().string());
    line("session_meta", generator::sessionMetaPayload(session, instructions));
    text += inherited;
    ordinal += static_cast<int>(std::count(inherited.begin(), inherited.end(), '\n'));
    write();
}

void RolloutRecorder::append(const CodexStep& step, Date now) {
    time = now;
    appendMove(step);
    write();
}

void RolloutRecorder::appendMove(const CodexStep& step) {
    switch (step.move) {
        case CodexMove::begins:
            return beginTurn(step.text);
        case CodexMove::thinks:
            item({{"type", "reasoning"},
                  {"summary", {{{"type", "summary_text"}, {"text", step.text}}}}});
            return completed({{"type", "Reasoning"}, {"summary_text", {step.text}}});
        case CodexMove::runs:
            command = step.text;
            return callTool("exec_command", {{"cmd", step.text}});
        case CodexMove::delegates:
            return callTool("spawn_agent", {{"message", step.text}});
        case CodexMove::receives:
            return receive(step.text);
        case CodexMove::answers:
            return answer(step.text);
        case CodexMove::fails:
            return event(
                {{"type", "task_complete"},
                 {"last_agent_message", nullptr},
                 {"error", {{"message", step.text}, {"codex_error_info", "server_overloaded"}}}});
        case CodexMove::isInterrupted:
            return event({{"type", "turn_aborted"}, {"reason", "interrupted"}});
    }
}

void RolloutRecorder::beginTurn(std::string_view prompt) {
    turnId = random.uuid();
    event({{"type", "task_started"}, {"model_context_window", contextWindow}});
    line("turn_context", encodeJson({{"turn_id", turnId},
                                     {"cwd", session.cwd},
                                     {"approval_policy", "never"},
                                     {"model", session.model},
                                     {"effort", "medium"},
                                     {"summary", "auto"}}));
    message("user", prompt);
    completed({{"type", "UserMessage"}, {"content", {{{"type", "text"}, {"text", prompt}}}}});
}

void RolloutRecorder::callTool(std::string_view name, const Json& arguments) {
    callId = "call_" + random.hexadecimal(12);
    item({{"type", "function_call"},
          {"status", "completed"},
          {"name", name},
          {"arguments", encodeJson(arguments)},
          {"call_id", callId}});
    countTokens();
}

void RolloutRecorder::receive(std::string_view output) {
    item({{"type", "function_call_output"}, {"call_id", callId}, {"output", output}});
    if (command.empty()) return;
    completed({{"type", "CommandExecution"},
               {"command", {"/bin/bash", "-lc", command}},
               {"status", "completed"},
               {"exit_code", 0}});
    command.clear();
}

void RolloutRecorder::answer(std::string_view said) {
    message("assistant", said);
    completed({{"type", "AgentMessage"}, {"content", {{{"type", "Text"}, {"text", said}}}}});
    countTokens();
    event({{"type", "task_complete"}, {"last_agent_message", said}});
}

/// Everything said before comes from the model's cache, and the context grows until it is full.
void RolloutRecorder::countTokens() {
    const std::int64_t cached = std::max(session.lastInputTokens, firstContext);
    const std::int64_t output = random.between(60, 900);
    const std::int64_t reasoning = output / 3;
    session.lastInputTokens = std::min(cached + random.between(400, 3'000), contextWindow);
    session.inputTokens += session.lastInputTokens;
    session.cachedInputTokens += cached;
    session.outputTokens += output;
    session.reasoningTokens += reasoning;
    event({{"type", "token_count"},
           {"info",
            {{"total_token_usage", usage(session.inputTokens, session.cachedInputTokens,
                                         session.outputTokens, session.reasoningTokens)},
             {"last_token_usage", usage(session.lastInputTokens, cached, output, reasoning)},
             {"model_context_window", contextWindow}}},
           {"rate_limits", nullptr}});
}

void RolloutRecorder::message(std::string_view role, std::string_view said) {
    const std::string_view type = role == "assistant" ? "output_text" : "input_text";
    item({{"type", "message"},
          {"id", "msg_" + random.uuid()},
          {"role", role},
          {"content", {{{"type", type}, {"text", said}}}}});
}

void RolloutRecorder::event(Json payload) {
    payload["turn_id"] = turnId;
    line("event_msg", encodeJson(payload));
}

/// The event that shows what was done; `done` is one of the conversation's items.
void RolloutRecorder::completed(Json done) {
    done["id"] = "item_" + random.hexadecimal(12);
    event({{"type", "item_completed"}, {"thread_id", session.id}, {"item", std::move(done)}});
}

void RolloutRecorder::item(const Json& payload) {
    line("response_item", encodeJson(payload));
}

void RolloutRecorder::line(std::string_view type, const std::string& payload) {
    text += generator::rolloutLineHead(time, ordinal++, type) + payload + "}\n";
}

void RolloutRecorder::write() {
    std::ofstream(session.path, std::ios::app) << text;
    text.clear();
}

}  // namespace fleetwise::demo
