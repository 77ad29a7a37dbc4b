#include "sources/rollout_prompt.h"

#include "sources/rollout_head.h"
#include "sources/rollout_item.h"
#include "sources/rollout_line.h"

#include <algorithm>

namespace fleetwise {

namespace {

/// Agents of today tell a prompt as an item, older ones as a message.
std::optional<std::string> promptOf(JsonObject& payload) {
    const auto type = memberIfPresent<std::string_view>(payload, "type");
    if (type == "item_completed") return RolloutItem::read(payload, longestRolloutPrompt).prompt;
    if (type != "user_message") return {};
    const auto message = memberIfPresent<std::string_view>(payload, "message");
    if (!message || trimmed(*message).empty()) return {};
    return shortenedText(trimmed(*message), longestRolloutPrompt);
}

/// The last `window` bytes, from the first line that begins in them.
std::optional<std::string> endOf(const RegularFile& file, std::uint64_t window) {
    const auto size = static_cast<std::uint64_t>(file.stamp().sizeBytes);
    const std::uint64_t begin = size - std::min(size, window);
    std::string text;
    text.reserve(size - begin + jsonPadding);
    text.resize(size - begin);
    const auto got = file.read(begin, text);
    if (!got) return {};
    text.resize(*got);
    if (begin > 0) text.erase(0, std::min(text.find('\n'), text.size()));
    return text;
}

}  // namespace

std::optional<std::string> lastRolloutPrompt(std::string_view padded,
                                             const IsTypedPrompt& isTyped) {
    std::optional<std::string> last;
    JsonReader json;
    forEachRolloutLine(json, padded, [&](RolloutLine& line) {
        if (line.type != "event_msg") return;
        auto prompt = promptOf(line.payload);
        if (prompt && isTyped(*prompt)) last = std::move(prompt);
    });
    return last;
}

std::optional<std::string> lastRolloutPrompt(const RegularFile& file,
                                             const IsTypedPrompt& isTyped) {
    // Mostly it stands near the end.
    for (const std::uint64_t window : {rolloutPromptWindow / 16, rolloutPromptWindow}) {
        const auto text = endOf(file, window);
        if (!text) return {};
        if (auto prompt = lastRolloutPrompt(*text, isTyped)) return prompt;
        if (static_cast<std::uint64_t>(file.stamp().sizeBytes) <= window) break;
    }
    const auto start = RolloutHead::read(file);
    if (!start || !start->head) return {};
    const auto& first = start->head->firstPrompt;
    return first && isTyped(*first) ? first : std::nullopt;
}

}  // namespace fleetwise
