#pragma once

#include "foundation/json_reader.h"
#include "foundation/text.h"

#include <optional>
#include <string>
#include <string_view>

namespace fleetwise {

/// One line of a Codex rollout: {"timestamp", "type", "payload"}.
struct RolloutLine {
    std::string_view type;
    std::string_view timestamp;  ///< ISO 8601; empty where there is none
    JsonObject& payload;
};

/// Whether the line is one of the conversation's, which are many and long and tell nothing here:
/// seen by its beginning, without parsing it.
inline bool isConversation(std::string_view line) {
    return line.substr(0, 128).find("\"type\":\"response_item\"") != std::string_view::npos;
}

/// Calls `visit(RolloutLine&)` for each line of `text` that is whole and not of the conversation,
/// also for a last one without a newline. jsonPadding readable bytes follow `text`.
template <typename Visit>
void forEachRolloutLine(JsonReader& json, std::string_view text, Visit&& visit) {
    forEachLine(text, [&](std::string_view line) {
        if (isConversation(line)) return;
        json.readObject(line, [&](JsonObject& object) {
            const auto type = memberIfPresent<std::string_view>(object, "type");
            const auto timestamp = memberIfPresent<std::string_view>(object, "timestamp");
            auto payload = memberIfPresent<JsonObject>(object, "payload");
            if (!type || !payload) return;
            RolloutLine read{.type = *type,
                             .timestamp = timestamp.value_or(std::string_view()),
                             .payload = *payload};
            visit(read);
        });
    });
}

/// The text member `key`; nothing where it is empty.
inline std::optional<std::string> textMember(JsonObject& object, std::string_view key) {
    const auto text = memberIfPresent<std::string_view>(object, key);
    return text && !text->empty() ? std::optional<std::string>(*text) : std::nullopt;
}

/// The size of a model's context window in tokens, from an object that carries it.
inline std::optional<std::int64_t> contextWindowIn(JsonObject& object) {
    const auto tokens = memberIfPresent<std::int64_t>(object, "model_context_window");
    return tokens && *tokens > 0 ? tokens : std::nullopt;
}

}  // namespace fleetwise
