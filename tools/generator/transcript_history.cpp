#include "generator/transcript_history.h"

#include <fmt/format.h>

#include <set>

namespace fleetwise::generator {

namespace {

/// Calls `visit(record, offset)` for each line, with the offset of its first byte.
template <typename Visit>
void forEachRecord(std::string_view lines, Visit&& visit) {
    for (std::size_t begin = 0; begin < lines.size();) {
        const std::size_t end = lines.find('\n', begin);
        visit(parseJson(lines.substr(begin, end - begin)).value_or(Json::object()), begin);
        begin = end + 1;
    }
}

bool belongsToTurn(const Json& record) {
    const std::string type = record.value("type", "");
    return type == "user" || type == "assistant" || type == "attachment" ||
           type == "queue-operation";
}

Usage usageOf(const Json& message) {
    const Json& usage = message.at("usage");
    const Json& writes = usage.at("cache_creation");
    return {.requests = 1,
            .input = usage.at("input_tokens"),
            .output = usage.at("output_tokens"),
            .thinking = usage.at("output_tokens_details").at("thinking_tokens"),
            .cacheRead = usage.at("cache_read_input_tokens"),
            .cacheWrite5m = writes.at("ephemeral_5m_input_tokens"),
            .cacheWrite1h = writes.at("ephemeral_1h_input_tokens")};
}

std::int64_t contextOf(const Usage& usage) {
    return usage.input + usage.cacheRead + usage.cacheWrite5m + usage.cacheWrite1h;
}

/// Adds records to a book as they are written again.
class Accountant {
public:
    explicit Accountant(SessionBook& sessionBook) : book(sessionBook) {}

    void add(const Json& record) {
        const std::string type = record.value("type", "");
        if (type == "last-prompt") book.lastPrompt = record.at("lastPrompt");
        if (type == "cost-state") book.billedUSD = record.at("totalCostUSD");
        if (record.contains("origin")) book.lastTurnOrigin = record.at("origin").at("kind");
        if (type == "assistant") addReply(record);
    }

private:
    void addReply(const Json& record) {
        const Json& message = record.at("message");
        book.assistantTurns += 1;
        book.model = message.at("model");
        for (const Json& block : message.at("content")) {
            if (block.at("type") == "tool_use") book.toolCalls += 1;
            if (block.at("type") == "text") book.lastReply = block.at("text");
        }
        if (message.contains("usage")) addUsage(record.at("requestId"), usageOf(message));
    }

    void addUsage(const std::string& requestId, const Usage& usage) {
        book.contextTokens = contextOf(usage);
        book.outputTokens += usage.output;
        book.thinkingTokens += usage.thinking;
        if (!requests.insert(requestId).second) return;
        book.inheritedRequests += 1;
        book.inheritedUsageByModel[book.model] += usage;
    }

    SessionBook& book;
    std::set<std::string> requests;
};

std::string replaced(std::string_view text, const std::string& old, const std::string& fresh) {
    std::string result(text);
    for (std::size_t at = result.find(old); at != std::string::npos;
         at = result.find(old, at + fresh.size()))
        result.replace(at, old.size(), fresh);
    return result;
}

}  // namespace

std::vector<std::size_t> turnEnds(std::string_view transcript) {
    std::vector<std::size_t> ends;
    bool isOver = false;
    forEachRecord(transcript, [&](const Json& record, std::size_t offset) {
        if (isOver && belongsToTurn(record)) {
            ends.push_back(offset);
            isOver = false;
        }
        if (record.value("subtype", "") == "turn_duration") isOver = true;
    });
    if (isOver) ends.push_back(transcript.size());
    return ends;
}

TranscriptHistory inherit(std::string_view lines, std::string_view parentId, SessionBook& fork) {
    constexpr std::string_view pattern = R"("sessionId":"{}")";
    TranscriptHistory history{
        .text = replaced(lines, fmt::format(pattern, parentId), fmt::format(pattern, fork.id))};
    Accountant accountant(fork);
    forEachRecord(history.text, [&](const Json& record, std::size_t) {
        accountant.add(record);
        history.lastUuid = record.value("uuid", history.lastUuid);
    });
    fork.usageByModel = fork.inheritedUsageByModel;
    return history;
}

}  // namespace fleetwise::generator
