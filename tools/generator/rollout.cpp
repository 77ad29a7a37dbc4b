#include "generator/rollout.h"

#include "generator/rollout_format.h"

#include <fmt/format.h>

#include <algorithm>
#include <iterator>

namespace fleetwise::generator {

namespace {

/// A Codex rollout: lines {timestamp, ordinal, type, payload}. The session's head is long, for it
/// carries the instructions and the tools.
class RolloutWriter {
public:
    RolloutWriter(RolloutBook& rolloutBook, const RolloutShape& wanted, Random& source,
                  const Filler& text)
        : book(rolloutBook), shape(wanted), random(source), filler(text), file(book.path) {
        book.contextWindow = 258'400;
    }

    tl::expected<std::int64_t, GeneratorError> write() {
        sessionMeta();
        for (int index = 0; index < shape.turns; ++index) {
            // The last turn ends at the session's last event.
            now = book.startedAt + (book.lastEventAt - book.startedAt) * (index + 1) / shape.turns;
            turn(index + 1 == shape.turns ? book.state : "done");
        }
        return file.close(book.lastEventAt);
    }

private:
    template <typename... Arguments>
    void line(std::string_view type, fmt::format_string<Arguments...> payload,
              Arguments&&... arguments) {
        file.text += rolloutLineHead(now, ordinal++, type);
        fmt::format_to(std::back_inserter(file.text), payload,
                       std::forward<Arguments>(arguments)...);
        file.text += '}';
        file.endLine();
    }

    void sessionMeta() {
        now = book.startedAt;
        line("session_meta", "{}", sessionMetaPayload(book, filler.escapedText(random, 19'000)));
        if (shape.inherited.empty()) {
            message("developer", filler.escapedText(random, 7'000));
        } else {
            file.text += shape.inherited;
            ordinal +=
                static_cast<int>(std::count(shape.inherited.begin(), shape.inherited.end(), '\n'));
        }
    }

    void turn(std::string_view state) {
        turnId = random.uuid();
        line("event_msg", R"({{"type":"task_started","turn_id":"{}","model_context_window":{}}})",
             turnId, book.contextWindow);
        line("turn_context",
             R"({{"turn_id":"{}","cwd":{},"approval_policy":"never","model":"{}",)"
             R"("summary":"none"}})",
             turnId, encodeJson(Json(book.cwd)), book.model);
        message("user", Filler::sentence(random, 12));
        for (std::uint64_t steps = 1 + random.below(6); steps > 0; --steps)
            step();
        if (state == "working") return;
        message("assistant", Filler::sentence(random, 25));
        tokenCount();
        turnEnd(state);
    }

    void turnEnd(std::string_view state) {
        if (state == "idle") {
            line("event_msg", R"({{"type":"turn_aborted","turn_id":"{}","reason":"interrupted"}})",
                 turnId);
            return;
        }
        line("event_msg", R"({{"type":"task_complete","turn_id":"{}","last_agent_message":{}{}}})",
             turnId, state == "failed" ? "null" : R"("Done.")",
             state == "failed"
                 ? R"(,"error":{"message":"overloaded","codex_error_info":"server_overloaded"})"
                 : "");
    }

    void message(std::string_view role, std::string_view escapedText) {
        line("response_item",
             R"({{"type":"message","id":"msg_{}","role":"{}","content":[{{"type":"{}",)"
             R"("text":"{}"}}]}})",
             random.uuid(), role, role == "assistant" ? "output_text" : "input_text", escapedText);
    }

    /// One command the agent runs, and the tokens that asking for it took.
    void step() {
        const std::string call = "call_" + random.hexadecimal(12);
        line("response_item",
             R"({{"type":"function_call","status":"completed","name":"exec_command",)"
             R"("arguments":"{{\"cmd\": \"{}\"}}","call_id":"{}"}})",
             Filler::phrase(random, 5), call);
        tokenCount();
        line("response_item", R"({{"type":"function_call_output","call_id":"{}","output":"{}"}})",
             call, filler.escapedText(random, 200 + random.below(12'000)));
    }

    /// The running totals after one more request.
    void tokenCount() {
        const std::int64_t cached = random.between(2'000, 90'000);
        const std::int64_t written = random.between(0, 900);
        const std::int64_t output = random.between(60, 900);
        const std::int64_t reasoning = output / 3;
        book.lastInputTokens = cached + written + random.between(100, 4'000);
        book.inputTokens += book.lastInputTokens;
        book.cachedInputTokens += cached;
        book.cacheWriteTokens += written;
        book.outputTokens += output;
        book.reasoningTokens += reasoning;
        line("event_msg",
             R"({{"type":"token_count","info":{{"total_token_usage":{},"last_token_usage":{},)"
             R"("model_context_window":{}}},"rate_limits":{{"primary":{{"used_percent":41.5,)"
             R"("window_minutes":300,"resets_at":{}}},"secondary":{{"used_percent":12.0,)"
             R"("window_minutes":10080,"resets_at":{}}},"credits":{{"has_credits":true,)"
             R"("unlimited":false,"balance":"12.50"}},"plan_type":null}}}})",
             usage(book.inputTokens, book.cachedInputTokens, book.cacheWriteTokens,
                   book.outputTokens, book.reasoningTokens),
             usage(book.lastInputTokens, cached, written, output, reasoning), book.contextWindow,
             secondsAfterNow(9'000), secondsAfterNow(400'000));
    }

    static std::string usage(std::int64_t input, std::int64_t cached, std::int64_t written,
                             std::int64_t output, std::int64_t reasoning) {
        return fmt::format(
            R"({{"input_tokens":{},"cached_input_tokens":{},"cache_write_input_tokens":{},)"
            R"("output_tokens":{},"reasoning_output_tokens":{},"total_tokens":{}}})",
            input, cached, written, output, reasoning, input + output);
    }

    std::int64_t secondsAfterNow(std::int64_t seconds) const {
        return static_cast<std::int64_t>(secondsSince1970(now)) + seconds;
    }

    RolloutBook& book;
    const RolloutShape& shape;
    Random& random;
    const Filler& filler;
    OutputFile file;
    Date now;
    std::string turnId;
    int ordinal = 0;
};

}  // namespace

tl::expected<std::int64_t, GeneratorError> writeRollout(RolloutBook& book,
                                                        const RolloutShape& shape, Random& random,
                                                        const Filler& filler) {
    return RolloutWriter(book, shape, random, filler).write();
}

}  // namespace fleetwise::generator
