#include "cost/transcript_reading_builder.h"

#include "cost/prompt_text.h"
#include "cost/task_notification.h"
#include "foundation/saturating.h"
#include "session/task_notice.h"

namespace fleetwise {

namespace {

/// What stands as the model of a message that the agent itself wrote.
constexpr std::string_view noticeModel = "<synthetic>";

/// Whether the line begins with a "type" that no figure is taken from. Half of a transcript is
/// such records; they need no parsing. Agents write no escapes in a type and no second one.
bool isOfNoInterest(std::string_view line) {
    constexpr std::string_view opening = R"({"type":")";
    if (!line.starts_with(opening)) return false;
    line.remove_prefix(opening.size());
    const std::string_view type = line.substr(0, line.find('"'));
    return type != "user" && type != "assistant" && type != "queue-operation";
}

void accumulate(std::int64_t& sum, std::int64_t tokens) {
    sum = saturatingSum(sum, tokens);
}

}  // namespace

void TranscriptReadingBuilder::add(std::string_view line) {
    if (reading.stats.cwd && isOfNoInterest(line)) return;
    const auto record = TranscriptRecord::parse(json, line);
    if (!record) return;
    if (!reading.stats.cwd) reading.stats.cwd = record->cwd;
    switch (record->type) {
        case TranscriptRecord::Type::user:
            return addUser(*record);
        case TranscriptRecord::Type::assistant:
            return addAssistant(*record);
        case TranscriptRecord::Type::queueOperation:
            if (record->content) addSentText(*record->content, *record);
            return;
        default:
            return;
    }
}

void TranscriptReadingBuilder::addUser(const TranscriptRecord& record) {
    if (record.origin) reading.stats.lastTurnOrigin = record.origin->kind;
    const bool isNotification = record.origin && record.origin->kind == "task-notification";
    if (!record.message || !(isNotification || record.isPrompt())) return;
    for (const std::string_view text : record.message->texts)
        addSentText(text, record);
}

void TranscriptReadingBuilder::addAssistant(const TranscriptRecord& record) {
    if (!record.message) return;
    const auto& message = *record.message;
    auto& stats = reading.stats;
    ++stats.assistantTurns;
    stats.toolCalls += message.toolCalls;
    // The agent's own notice of an API error is no reply of a model and has used nothing.
    const bool isNotice = message.model == noticeModel;
    if (message.model && !isNotice) stats.model = *message.model;
    if (record.effort) reading.effort = *record.effort;
    if (auto prose = record.prose()) {
        stats.lastReply = std::move(prose);
        lastReplyTimestamp = record.timestamp.value_or("");
    }
    if (message.usage && !isNotice) addUsage(*message.usage);
}

void TranscriptReadingBuilder::addUsage(const TranscriptUsage& usage) {
    auto& stats = reading.stats;
    stats.contextTokens = usage.inputTokens;
    accumulate(stats.contextTokens, usage.cacheReadTokens);
    accumulate(stats.contextTokens, usage.cacheCreationTokens);
    accumulate(stats.outputTokens, usage.outputTokens);
    accumulate(stats.thinkingTokens, usage.thinkingTokens);
}

/// A text on its way to the model: a notification tells how a task ended, and the answers it
/// quotes are no prompt; anything else may carry a federation mark.
void TranscriptReadingBuilder::addSentText(std::string_view text, const TranscriptRecord& record) {
    if (auto notification = TaskNotification::parse(text)) {
        notification->ending.at = parseInternetDate(record.timestamp.value_or(""));
        reading.taskEndings[notification->taskId] = notification->ending;
    } else if (!isTaskNotice(text)) {
        if (auto id = PromptText::federationId(text)) reading.federationId = std::move(id);
    }
}

TranscriptReading TranscriptReadingBuilder::finish() {
    if (lastReplyTimestamp) reading.stats.lastReplyAt = parseInternetDate(*lastReplyTimestamp);
    return std::move(reading);
}

}  // namespace fleetwise
