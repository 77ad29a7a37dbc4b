// Records are put together as text, since a JSON document per record would cost more time than
// all the rest. Every record advances the session's clock by its share of the file, so that the
// timestamps run evenly from the session's start to the file's modification date.

#include "generator/transcript.h"

#include "generator/agent_models.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <iterator>
#include <vector>

namespace fleetwise::generator {

namespace {

/// What a turn needs after its last tool call: the answer and the records that close it.
constexpr std::int64_t closingBytes = 6'000;

struct Tool {
    std::string_view name;
    std::string_view argument;  ///< the key that says what it works on
    bool takesFile;
};

constexpr std::array<Tool, 5> tools{{
    {"Bash", "command", false},
    {"Read", "file_path", true},
    {"Edit", "file_path", true},
    {"Grep", "pattern", false},
    {"Agent", "description", false},
}};

struct ToolCall {
    std::string id;
    std::string recordUuid;
    std::string_view tool;
};

/// One request as every one of its records repeats it.
struct Request {
    const AgentModel* model = nullptr;
    std::string id;
    std::string messageId;
    std::string reference;
    std::string usage;  ///< JSON
    std::string_view stopReason;
    std::int64_t contextTokens = 0;
    std::int64_t outputTokens = 0;
    std::int64_t thinkingTokens = 0;
    int blocks = 0;  ///< records so far
};

/// The inside of a JSON string.
std::string escaped(const std::string& text) {
    const std::string quoted = encodeJson(Json(text));
    return quoted.substr(1, quoted.size() - 2);
}

class TranscriptWriter {
public:
    TranscriptWriter(SessionBook& sessionBook, const TranscriptShape& wanted, Random& source,
                     const Filler& text)
        : book(sessionBook),
          shape(wanted),
          random(source),
          filler(text),
          file(sessionBook.transcriptPath),
          cwd(escaped(sessionBook.cwd)),
          model(&random.pick(agentModels)) {
        common =
            fmt::format(R"("userType":"external","entrypoint":"{}","cwd":"{}","sessionId":"{}",)"
                        R"("version":"2.1.329")",
                        book.entrypoint, cwd, book.id);
        if (book.gitBranch) common += fmt::format(R"(,"gitBranch":"{}")", *book.gitBranch);
        sidechain = shape.agentId.empty()
                        ? R"("isSidechain":false)"
                        : fmt::format(R"("isSidechain":true,"agentId":"{}")", shape.agentId);
        if (shape.history) copy(*shape.history);
        tick();
    }

    tl::expected<void, GeneratorError> write() {
        if (shape.agentId.empty() && !shape.history) prologue();
        do {
            turn();
        } while (file.size() < shape.bytes);
        if (shape.ending != TranscriptEnding::answered) {
            prompt();
            shape.ending == TranscriptEnding::failed ? errorRecord() : pendingCall();
            lastPrompt();
        }
        return file.close(book.lastActivityAt).map([this](std::int64_t size) {
            book.transcriptBytes = size;
        });
    }

private:
    template <typename... Arguments>
    void line(fmt::format_string<Arguments...> pattern, Arguments&&... arguments) {
        fmt::format_to(std::back_inserter(file.text), pattern,
                       std::forward<Arguments>(arguments)...);
        file.endLine();
    }

    void copy(const TranscriptHistory& history) {
        file.text = history.text;
        copiedBytes = file.size();
        uuid = history.lastUuid;
        turns = 1;
    }

    /// Sets the time of the records that follow.
    void tick() {
        const double part =
            static_cast<double>(file.size() - copiedBytes) /
            static_cast<double>(std::max<std::int64_t>(shape.bytes - copiedBytes, 10'000));
        const Seconds whole = book.lastActivityAt - book.startedAt;
        timestamp = internetDate(book.startedAt + whole * std::min(1.0, part));
    }

    /// A new record's id; `parent` is that of the record before it.
    const std::string& nextUuid() {
        parent = std::exchange(uuid, random.uuid());
        return uuid;
    }

    std::string parentReference() const {
        return parent.empty() ? "null" : fmt::format(R"("{}")", parent);
    }

    void prologue() {
        line(R"({{"type":"mode","mode":"normal","sessionId":"{}"}})", book.id);
        line(R"({{"type":"permission-mode","permissionMode":"{}","sessionId":"{}"}})",
             book.permissionMode, book.id);
        line(R"({{"type":"file-history-snapshot"}})");
    }

    void turn() {
        tick();
        prompt();
        do {
            toolRequest();
        } while (file.size() + closingBytes < shape.bytes && random.chance(80));
        answer();
        if (shape.agentId.empty()) closing();
    }

    void prompt() {
        const bool isPrint = book.entrypoint == "sdk-cli";
        if (!isPrint && turns > 0 && random.chance(12)) {
            notification();
        } else {
            book.lastPrompt = Filler::sentence(random, 12);
            if (isPrint) queueOperations();
            userRecord(book.lastPrompt,
                       isPrint ? R"("promptSource":"sdk","turnOrigin":"sdk")"
                               : R"("origin":{"kind":"human"},"promptSource":"typed")");
            if (!isPrint) book.lastTurnOrigin = "human";
        }
        ++turns;
        if (random.chance(40)) attachment();
    }

    void notification() {
        const std::string task = random.hexadecimal(8);
        userRecord(fmt::format("<task-notification>\\n<task-id>b{}</task-id>\\n<status>completed"
                               "</status>\\n<summary>Background command \\\"{}\\\" completed "
                               "(exit code 0)</summary>\\n</task-notification>",
                               task, Filler::word(random)),
                   R"("origin":{"kind":"task-notification"},"promptSource":"system")");
        book.lastTurnOrigin = "task-notification";
    }

    void queueOperations() {
        line(R"({{"type":"queue-operation","operation":"enqueue","timestamp":"{}",)"
             R"("sessionId":"{}","content":"{}"}})",
             timestamp, book.id, book.lastPrompt);
        line(R"({{"type":"queue-operation","operation":"dequeue","timestamp":"{}",)"
             R"("sessionId":"{}"}})",
             timestamp, book.id);
    }

    void userRecord(std::string_view content, std::string_view origin) {
        promptId = random.uuid();
        nextUuid();
        line(R"({{"parentUuid":{},{},"promptId":"{}","type":"user","message":{{"role":"user",)"
             R"("content":"{}"}},"uuid":"{}","timestamp":"{}","permissionMode":"{}",{},{}}})",
             parentReference(), sidechain, promptId, content, uuid, timestamp, book.permissionMode,
             origin, common);
    }

    void attachment() {
        nextUuid();
        line(R"({{"type":"attachment","attachment":{{"type":"file","content":"{}"}},)"
             R"("sessionId":"{}","uuid":"{}","parentUuid":{},"timestamp":"{}",{}}})",
             filler.escapedText(random, 200 + random.below(3'000)), book.id, uuid,
             parentReference(), timestamp, sidechain);
    }

    /// Asks the model and books the request once.
    Request request(std::string_view stopReason) {
        tick();
        if (turns > 1 && random.chance(2)) model = &random.pick(agentModels);
        Usage& total = book.usageByModel[std::string(model->name)];
        const std::int64_t input = random.between(3, 60);
        const std::int64_t write5m = random.between(0, 900);
        const std::int64_t write1h = random.between(0, 2'000);
        const std::int64_t output = random.between(40, 1'500);
        const std::int64_t thinking = random.chance(30) ? output / 3 : 0;
        const std::int64_t read = cached;
        cached = (cached + write5m + write1h) % 180'000;
        total.requests += 1;
        total.input += input;
        total.output += output;
        total.thinking += thinking;
        total.cacheRead += read;
        total.cacheWrite5m += write5m;
        total.cacheWrite1h += write1h;
        Request made;
        made.model = model;
        made.id = "req_01" + random.hexadecimal(16);
        made.messageId = "msg_01" + random.hexadecimal(16);
        made.reference = random.uuid();
        made.stopReason = stopReason;
        made.contextTokens = input + read + write5m + write1h;
        made.outputTokens = output;
        made.thinkingTokens = thinking;
        made.usage = fmt::format(
            R"({{"input_tokens":{},"cache_creation_input_tokens":{},)"
            R"("cache_read_input_tokens":{},"output_tokens":{},"output_tokens_details":)"
            R"({{"thinking_tokens":{}}},"server_tool_use":{{"web_search_requests":0,)"
            R"("web_fetch_requests":0}},"service_tier":"standard","cache_creation":)"
            R"({{"ephemeral_1h_input_tokens":{},"ephemeral_5m_input_tokens":{}}},)"
            R"("inference_geo":"not_available","iterations":[],"speed":"standard"}})",
            input, write5m + write1h, read, output, thinking, write1h, write5m);
        return made;
    }

    /// One content block of `made`, as a record of its own.
    void assistantRecord(Request& made, std::string_view block) {
        nextUuid();
        line(R"({{"parentUuid":{},{},"message":{{"id":"{}","type":"message","role":"assistant",)"
             R"("model":"{}","content":[{}],"stop_reason":"{}","stop_sequence":null,"usage":{},)"
             R"("stop_details":null}},"apiBlockIndex":{},"requestId":"{}","requestRef":"{}",)"
             R"("requestedModel":"{}","promptCacheRequested":"5m","type":"assistant",)"
             R"("uuid":"{}","timestamp":"{}","effort":"medium","perTurnEffort":"medium",)"
             R"("madeBy":"model",{}}})",
             parentReference(), sidechain, made.messageId, made.model->name, block, made.stopReason,
             made.usage, made.blocks++, made.id, made.reference, made.model->name, uuid, timestamp,
             common);
        book.assistantTurns += 1;
        book.model = made.model->name;
        book.contextTokens = made.contextTokens;
        book.outputTokens += made.outputTokens;
        book.thinkingTokens += made.thinkingTokens;
    }

    void textRecord(Request& made, int words) {
        book.lastReply = Filler::sentence(random, words);
        assistantRecord(made, fmt::format(R"({{"type":"text","text":"{}"}})", book.lastReply));
    }

    ToolCall toolRecord(Request& made, const Tool& tool) {
        ToolCall call{"toolu_01" + random.hexadecimal(16), {}, tool.name};
        const std::string argument = tool.takesFile
                                         ? fmt::format("{}/src/{}.cpp", cwd, Filler::word(random))
                                         : Filler::phrase(random, 6);
        assistantRecord(made, fmt::format(R"({{"type":"tool_use","id":"{}","name":"{}","input":)"
                                          R"({{"{}":"{}"}}}})",
                                          call.id, tool.name, tool.argument, argument));
        call.recordUuid = uuid;
        book.toolCalls += 1;
        return call;
    }

    /// A request that calls tools, and what they answer.
    void toolRequest() {
        Request made = request("tool_use");
        if (made.thinkingTokens > 0) {
            const std::string signature = random.hexadecimal(16);
            assistantRecord(
                made, fmt::format(R"({{"type":"thinking","thinking":"{}",)"
                                  R"("signature":"{}"}})",
                                  filler.escapedText(random, random.below(2'000)), signature));
        }
        if (random.chance(40)) textRecord(made, 20);
        std::vector<ToolCall> calls;
        for (std::uint64_t count = 1 + random.below(10) / 8; count > 0; --count)
            calls.push_back(toolRecord(made, random.pick(tools)));
        for (const ToolCall& call : calls)
            toolResult(call);
    }

    /// Mostly some kilobytes, at times some hundred, and never past the file's end.
    std::size_t resultBytes() {
        const std::uint64_t roll = random.below(1'000);
        std::int64_t bytes = random.between(200, 4'000);
        if (roll >= 940) bytes = random.between(4'000, 60'000);
        if (roll >= 995) bytes = random.between(60'000, 400'000);
        // The text stands in the record twice.
        const std::int64_t room = (shape.bytes - file.size() - closingBytes) / 2;
        return static_cast<std::size_t>(
            std::clamp<std::int64_t>(bytes, 64, std::max<std::int64_t>(room, 64)));
    }

    void toolResult(const ToolCall& call) {
        const std::string_view output = filler.escapedText(random, resultBytes());
        nextUuid();
        line(R"({{"parentUuid":"{}",{},"promptId":"{}","type":"user","message":{{"role":"user",)"
             R"("content":[{{"tool_use_id":"{}","type":"tool_result","content":"{}",)"
             R"("is_error":false}}]}},"uuid":"{}","timestamp":"{}","toolUseResult":)"
             R"({{"stdout":"{}","stderr":"","interrupted":false,"isImage":false}},)"
             R"("sourceToolAssistantUUID":"{}",{}}})",
             call.recordUuid, sidechain, promptId, call.id, output, uuid, timestamp, output,
             call.recordUuid, common);
    }

    void answer() {
        Request made = request("end_turn");
        textRecord(made, 30);
    }

    void pendingCall() {
        Request made = request("tool_use");
        toolRecord(made, {shape.pendingTool, "description", false});
    }

    /// The record the agent writes when the service refuses: no request is answered, no tokens.
    void errorRecord() {
        tick();
        nextUuid();
        book.lastReply = "API Error: Overloaded";
        book.model = "<synthetic>";
        book.assistantTurns += 1;
        line(R"({{"parentUuid":{},{},"type":"assistant","uuid":"{}","timestamp":"{}",)"
             R"("message":{{"id":"{}","model":"{}","role":"assistant","stop_reason":)"
             R"("stop_sequence","type":"message","content":[{{"type":"text","text":"{}"}}]}},)"
             R"("error":"overloaded","isApiErrorMessage":true,"apiErrorStatus":529,{}}})",
             parentReference(), sidechain, uuid, timestamp, random.uuid(), book.model,
             book.lastReply, common);
    }

    /// What follows a turn's last answer.
    void closing() {
        tick();
        nextUuid();
        line(R"({{"parentUuid":{},{},"type":"system","subtype":"turn_duration","durationMs":{},)"
             R"("timestamp":"{}","uuid":"{}","isMeta":false,{}}})",
             parentReference(), sidechain, random.between(500, 90'000), timestamp, uuid, common);
        costState();
        lastPrompt();
        if (book.name) {
            line(R"({{"type":"custom-title","customTitle":"{}","sessionId":"{}"}})", *book.title,
                 book.id);
            line(R"({{"type":"agent-name","agentName":"{}","sessionId":"{}"}})", *book.name,
                 book.id);
        } else if (book.title) {
            line(R"({{"type":"ai-title","aiTitle":"{}","sessionId":"{}"}})", *book.title, book.id);
        }
    }

    void lastPrompt() {
        line(R"({{"type":"last-prompt","lastPrompt":"{}","leafUuid":"{}","sessionId":"{}"}})",
             book.lastPrompt, uuid, book.id);
    }

    /// The agent's own bill so far.
    void costState() {
        std::string models;
        book.billedUSD = 0;
        for (const AgentModel& priced : agentModels) {
            const auto used = book.usageByModel.find(std::string(priced.name));
            if (used == book.usageByModel.end()) continue;
            const Usage& usage = used->second;
            const double billed = priced.billed(usage);
            book.billedUSD += billed;
            if (!models.empty()) models += ',';
            models +=
                fmt::format(R"("{}":{{"inputTokens":{},"outputTokens":{},"thinkingTokens":{},)"
                            R"("cacheReadInputTokens":{},"cacheCreationInputTokens":{},)"
                            R"("webSearchRequests":0,"costUSD":{}}})",
                            priced.name, usage.input, usage.output, usage.thinking, usage.cacheRead,
                            usage.cacheWrite5m + usage.cacheWrite1h, billed);
        }
        line(R"({{"type":"cost-state","sessionId":"{}","totalCostUSD":{},"totalAPIDuration":172,)"
             R"("totalLinesAdded":0,"totalLinesRemoved":0,"modelUsage":{{{}}},)"
             R"("hasUnknownModelCost":false}})",
             book.id, book.billedUSD, models);
    }

    SessionBook& book;
    const TranscriptShape& shape;
    Random& random;
    const Filler& filler;
    OutputFile file;
    std::string cwd;  ///< as the inside of a JSON string
    const AgentModel* model;
    std::string common;     ///< what most records end with
    std::string sidechain;  ///< whose records these are
    std::string timestamp;
    std::string uuid;
    std::string parent;
    std::string promptId;
    std::int64_t cached = 15'000;  ///< tokens in the model's prompt cache
    int turns = 0;
    std::int64_t copiedBytes = 0;  ///< of a fork; they take no time
};

}  // namespace

tl::expected<void, GeneratorError> writeTranscript(SessionBook& book, const TranscriptShape& shape,
                                                   Random& random, const Filler& filler) {
    return TranscriptWriter(book, shape, random, filler).write();
}

}  // namespace fleetwise::generator
