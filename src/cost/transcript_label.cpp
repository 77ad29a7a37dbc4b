#include "cost/transcript_label.h"

#include "cost/prompt_text.h"
#include "cost/transcript_record.h"
#include "foundation/text.h"

namespace fleetwise {

namespace {

/// A title that was emptied is none.
std::optional<std::string> usableTitle(std::string_view title) {
    title = trimmed(title);
    return title.empty() ? std::nullopt : std::optional<std::string>(title);
}

}  // namespace

std::string TranscriptLabel::shortened(std::string_view text, std::size_t limit) {
    return PromptText::shortened(text, limit);
}

void TranscriptLabelFacts::add(JsonReader& json, std::string_view line, Place place) {
    const auto record = TranscriptRecord::parse(json, line);
    if (!record) return;
    if (record->customTitle) customTitle = usableTitle(*record->customTitle);
    if (record->aiTitle) aiTitle = usableTitle(*record->aiTitle);
    if (place.isInHead) addToHead(*record);
    if (place.isInTail) addToTail(*record);
}

void TranscriptLabelFacts::addToHead(const TranscriptRecord& record) {
    if (!firstCwd) firstCwd = record.cwd;
    if (firstPrompt) return;
    if (record.type == TranscriptRecord::Type::queueOperation && record.content) {
        firstPrompt = PromptText::typedByUser(*record.content);
    } else {
        firstPrompt = record.prompt();
    }
}

void TranscriptLabelFacts::addToTail(const TranscriptRecord& record) {
    if (!firstCwd && record.cwd) lastCwd = record.cwd;
    auto prompt = record.lastPrompt ? PromptText::typedByUser(*record.lastPrompt) : record.prompt();
    if (prompt) lastPrompt = std::move(prompt);
}

TranscriptLabel TranscriptLabelFacts::label() const {
    return {.title = customTitle ? customTitle : aiTitle,
            .lastPrompt = lastPrompt ? lastPrompt : firstPrompt,
            .cwd = firstCwd ? firstCwd : lastCwd};
}

}  // namespace fleetwise
