#include "cost/transcript_record.h"

#include "cost/prompt_text.h"
#include "cost/record_walk.h"
#include "foundation/text.h"

#include <utility>

namespace fleetwise {

namespace {

using Key = JsonKey;
using Type = TranscriptRecord::Type;

Type typeNamed(std::string_view name) {
    if (name == "assistant") return Type::assistant;
    if (name == "user") return Type::user;
    if (name == "queue-operation") return Type::queueOperation;
    return Type::other;
}

bool readOutputDetails(JsonValue value, TranscriptUsage& usage) {
    return walkObjectValue(value, [&](Key key, JsonValue member) {
        if (key == "thinking_tokens") usage.thinkingTokens = tokenCount(member);
        return true;
    });
}

bool readUsageMember(Key key, JsonValue value, TranscriptUsage& usage) {
    if (key == "input_tokens") {
        usage.inputTokens = tokenCount(value);
    } else if (key == "output_tokens") {
        usage.outputTokens = tokenCount(value);
    } else if (key == "cache_read_input_tokens") {
        usage.cacheReadTokens = tokenCount(value);
    } else if (key == "cache_creation_input_tokens") {
        usage.cacheCreationTokens = tokenCount(value);
    } else if (key == "output_tokens_details") {
        return readOutputDetails(value, usage);
    }
    return true;
}

struct ContentItem {
    std::optional<std::string_view> type;
    std::optional<std::string_view> text;
};

bool readItemMember(Key key, JsonValue value, ContentItem& item) {
    // Only prose is unescaped: a tool's result, which may be huge, is called "content".
    if (key == "type") {
        item.type = textValue(value);
    } else if (key == "text") {
        item.text = textValue(value);
    }
    return true;
}

bool readContentItem(JsonValue value, TranscriptMessage& message) {
    std::optional<ContentItem> item;
    if (!walkInto(value, item, readItemMember)) return false;
    if (!item) return true;
    if (item->type == "tool_use") ++message.toolCalls;
    if (item->type == "text" && item->text) message.texts.push_back(*item->text);
    return true;
}

bool readContent(JsonValue value, TranscriptMessage& message) {
    simdjson::ondemand::json_type type{};
    if (value.type().get(type)) return false;
    if (type == simdjson::ondemand::json_type::string) {
        if (const auto prose = textValue(value)) message.texts.push_back(*prose);
    }
    if (type != simdjson::ondemand::json_type::array) return true;
    JsonArray items;
    if (value.get_array().get(items)) return false;
    for (auto next : items) {
        JsonValue item;
        if (std::move(next).get(item) || !readContentItem(item, message)) return false;
    }
    return true;
}

bool readMessageMember(Key key, JsonValue value, TranscriptMessage& message) {
    if (key == "content") return readContent(value, message);
    if (key == "usage") return walkInto(value, message.usage, readUsageMember);
    if (key == "model") message.model = textValue(value);
    return true;
}

bool readOriginMember(Key key, JsonValue value, TranscriptOrigin& origin) {
    if (key == "kind") {
        if (const auto kind = textValue(value)) origin.kind = kind;
    } else if (key == "body") {
        if (!origin.kind) origin.kind = "peer";
    }
    return true;
}

/// The members whose value is a text that stands in the record as it is.
std::optional<std::string_view>* textMember(Key key, TranscriptRecord& record) {
    if (key == "cwd") return &record.cwd;
    if (key == "timestamp") return &record.timestamp;
    if (key == "effort") return &record.effort;
    if (key == "content") return &record.content;
    if (key == "customTitle") return &record.customTitle;
    if (key == "aiTitle") return &record.aiTitle;
    if (key == "lastPrompt") return &record.lastPrompt;
    return nullptr;
}

bool* flagMember(Key key, TranscriptRecord& record) {
    if (key == "isMeta") return &record.isMeta;
    if (key == "isSidechain") return &record.isSidechain;
    if (key == "isCompactSummary") return &record.isCompactSummary;
    return nullptr;
}

bool readMember(Key key, JsonValue value, TranscriptRecord& record) {
    if (key == "message") return walkInto(value, record.message, readMessageMember);
    if (key == "origin") return walkInto(value, record.origin, readOriginMember);
    if (key == "type") {
        record.type = typeNamed(textValue(value).value_or(""));
    } else if (auto* const member = textMember(key, record)) {
        *member = textValue(value);
    } else if (auto* const flag = flagMember(key, record)) {
        *flag = scalarValue<bool>(value).value_or(false);
    }
    return true;
}

}  // namespace

std::optional<TranscriptRecord> TranscriptRecord::parse(JsonReader& json, std::string_view line) {
    TranscriptRecord record;
    bool isWhole = false;
    const bool isObject = json.walkObject(line, [&](JsonObject& object) {
        isWhole = forEachMember(
            object, [&](Key key, JsonValue value) { return readMember(key, value, record); });
    });
    if (!isObject || !isWhole) return {};
    return record;
}

bool TranscriptRecord::isPrompt() const {
    if (type != Type::user || isMeta || isCompactSummary || isSidechain || !message) return false;
    return !origin || origin->kind == "human" || origin->kind == "peer";
}

std::optional<std::string> TranscriptRecord::prompt() const {
    if (!isPrompt()) return {};
    std::optional<std::string> joined;
    for (const std::string_view part : message->texts) {
        const auto words = PromptText::typedByUser(part);
        if (words) joined = joined ? *joined + "\n" + *words : *words;
    }
    return joined;
}

std::optional<std::string> TranscriptRecord::prose() const {
    std::string joined;
    if (!message) return {};
    for (const std::string_view part : message->texts) {
        if (!joined.empty()) joined += '\n';
        joined += part;
    }
    if (trimmed(joined).empty()) return {};
    return joined;
}

}  // namespace fleetwise
