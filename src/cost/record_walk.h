#pragma once

#include "foundation/json_reader.h"

#include <cstdint>
#include <optional>
#include <string_view>
#include <utility>

namespace fleetwise {

/// The name of a member, still escaped as it stands in the text.
using JsonKey = simdjson::ondemand::raw_json_string;

/// Calls `visit(JsonKey, JsonValue)` for the members in their order: one walk, whatever that order
/// is. False where the object is broken or `visit` says so.
template <typename Visit>
bool forEachMember(JsonObject object, Visit&& visit) {
    for (auto next : object) {
        simdjson::ondemand::field member;
        if (std::move(next).get(member)) return false;
        if (!visit(member.key(), member.value())) return false;
    }
    return true;
}

/// As forEachMember for a value that may be no object, which is passed over; where it is one,
/// `into` becomes a new T before the walk. `visit` gets it as its third argument.
template <typename T, typename Visit>
bool walkInto(JsonValue value, std::optional<T>& into, Visit&& visit) {
    const auto object = readValue<JsonObject>(value);
    if (!object) return object.error() == JsonFault::wrongType;
    if (!object->has_value()) return true;
    into.emplace();
    return forEachMember(**object,
                         [&](JsonKey key, JsonValue member) { return visit(key, member, *into); });
}

/// As walkInto where nobody asks whether there was an object.
template <typename Visit>
bool walkObjectValue(JsonValue value, Visit&& visit) {
    struct Nothing {};
    std::optional<Nothing> nothing;
    return walkInto(value, nothing,
                    [&](JsonKey key, JsonValue member, Nothing&) { return visit(key, member); });
}

// A broken scalar, such as a text with an unknown escape, does not disturb the walk: it counts as
// absent and the record is kept.
template <typename T>
std::optional<T> scalarValue(JsonValue value) {
    return readValue<T>(value).value_or(std::nullopt);
}

inline std::optional<std::string_view> textValue(JsonValue value) {
    return scalarValue<std::string_view>(value);
}

/// A number of tokens; 0 where there is none.
inline std::int64_t tokenCount(JsonValue value) {
    return scalarValue<std::int64_t>(value).value_or(0);
}

}  // namespace fleetwise
