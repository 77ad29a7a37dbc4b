#include "sources/rollout_item.h"

#include "foundation/text.h"
#include "sources/rollout_line.h"

namespace fleetwise {

namespace {

std::optional<std::string> shortened(std::string_view text, std::size_t limit) {
    text = trimmed(text);
    return text.empty() ? std::nullopt : std::optional(shortenedText(text, limit));
}

/// The text of a message's first part, {"content": [{"text": …}, …]}.
std::optional<std::string> messageText(JsonObject& item, std::size_t limit) {
    auto content = memberIfPresent<JsonArray>(item, "content");
    if (!content) return {};
    for (auto element : *content) {
        JsonObject part;
        if (element.get_object().get(part)) return {};
        const auto text = memberIfPresent<std::string_view>(part, "text");
        return text ? shortened(*text, limit) : std::nullopt;
    }
    return {};
}

/// The last of the texts in the list `key`: a command stands behind the shell that runs it.
std::optional<std::string> lastText(JsonObject& item, std::string_view key, std::size_t limit) {
    auto list = memberIfPresent<JsonArray>(item, key);
    std::string_view last;
    if (!list) return {};
    for (auto element : *list) {
        if (element.get_string().get(last)) return {};
    }
    return shortened(last, limit);
}

}  // namespace

RolloutItem RolloutItem::read(JsonObject& payload, std::size_t textLimit) {
    auto item = memberIfPresent<JsonObject>(payload, "item");
    if (!item) return {};
    const auto type = memberIfPresent<std::string_view>(*item, "type");
    if (type == "UserMessage") return {.prompt = messageText(*item, textLimit), .activity = {}};
    if (type == "AgentMessage") return {.prompt = {}, .activity = messageText(*item, textLimit)};
    if (type == "Reasoning")
        return {.prompt = {}, .activity = lastText(*item, "summary_text", textLimit)};
    if (type == "CommandExecution")
        return {.prompt = {}, .activity = lastText(*item, "command", textLimit)};
    return {};
}

}  // namespace fleetwise
