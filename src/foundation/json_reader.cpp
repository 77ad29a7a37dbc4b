#include "foundation/json_reader.h"

#include "foundation/json_surrogates.h"

namespace fleetwise {

bool JsonReader::open(std::string_view text, simdjson::ondemand::document& document,
                      JsonObject& object) {
    return !parser.iterate(text.data(), text.size(), text.size() + jsonPadding).get(document) &&
           !document.get_object().get(object);
}

bool JsonReader::isValid(std::string_view text) {
    return !validator.parse(text.data(), text.size(), /*realloc_if_needed=*/false).error();
}

bool JsonReader::isWhole(simdjson::ondemand::document& document, JsonObject& object) {
    // Only a walk to the end tells a torn object from a whole one.
    if (!document.is_alive() || object.reset().error() || object.raw_json().error()) return false;
    return document.current_location().error() == simdjson::OUT_OF_BOUNDS;
}

std::string_view JsonReader::prepared(std::string_view text) {
    auto changed = withoutLoneSurrogates(text);
    // The parser looks at the byte behind the text, and would take a brace there for the end of an
    // object that was torn.
    const char behind = text.data()[text.size()];
    if (!changed && (behind == '\n' || behind == '\0')) return text;
    copy = changed ? *std::move(changed) : std::string(text);
    copy.reserve(copy.size() + jsonPadding);
    return copy;
}

template tl::expected<std::optional<std::string_view>, JsonFault> readValue(JsonValue);
template tl::expected<std::optional<std::int64_t>, JsonFault> readValue(JsonValue);
template tl::expected<std::optional<double>, JsonFault> readValue(JsonValue);
template tl::expected<std::optional<bool>, JsonFault> readValue(JsonValue);
template tl::expected<std::optional<JsonObject>, JsonFault> readValue(JsonValue);
template tl::expected<std::optional<JsonArray>, JsonFault> readValue(JsonValue);

}  // namespace fleetwise
