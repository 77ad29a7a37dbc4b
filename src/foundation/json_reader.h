#pragma once

#include <simdjson.h>
#include <tl/expected.hpp>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>

namespace fleetwise {

/// How many readable bytes the fast parser wants behind every text it is given; what they hold
/// does not matter.
inline constexpr std::size_t jsonPadding = simdjson::SIMDJSON_PADDING;

using JsonObject = simdjson::ondemand::object;
using JsonArray = simdjson::ondemand::array;
using JsonValue = simdjson::ondemand::value;

enum class JsonFault { wrongType, malformed };

/// The fast road for other programs' files: reads the few members that are asked for and skips
/// the rest. One reader serves one thread; views it hands out live until its next text. A text may
/// be read once per visit: for a second reading of the same one there is no room.
class JsonReader {
public:
    /// Calls `visit(JsonObject&)` on the object that `text` holds, which may ask for its members in
    /// any order. `text` must be followed by jsonPadding readable bytes. False, without a visit,
    /// where the text is not one valid JSON object.
    template <typename Visit>
    bool readObject(std::string_view text, Visit&& visit) {
        text = prepared(text);
        // A search for members leaves its bounds on invalid text, so that is found out before.
        if (!isValid(text)) return false;
        simdjson::ondemand::document document;
        JsonObject object;
        if (!open(text, document, object)) return false;
        visit(object);
        return true;
    }

    /// As readObject at half the cost, for long texts: `visit` may only walk over the members in
    /// their order, and must stop at the first fault. False where the text is not one whole JSON
    /// object; `visit` may have run by then, so what it gathered counts only when this is true.
    template <typename Visit>
    bool walkObject(std::string_view text, Visit&& visit) {
        text = prepared(text);
        simdjson::ondemand::document document;
        JsonObject object;
        if (!open(text, document, object)) return false;
        visit(object);
        return isWhole(document, object);
    }

private:
    /// Begins to read the text; false where it does not begin like an object.
    bool open(std::string_view text, simdjson::ondemand::document& document, JsonObject& object);

    /// Whether the whole text is valid.
    bool isValid(std::string_view text);

    /// Whether the walk over the object ended at the end of the text.
    static bool isWhole(simdjson::ondemand::document& document, JsonObject& object);

    /// The text without halves of surrogate pairs and with its end told: itself, or in `copy`.
    std::string_view prepared(std::string_view text);

    simdjson::ondemand::parser parser;
    simdjson::dom::parser validator;
    std::string copy;
};

/// A value as T: std::string_view, std::int64_t (also from a number without a fraction), double,
/// bool, JsonObject, JsonArray. A null is nothing; another type is JsonFault::wrongType.
template <typename T>
tl::expected<std::optional<T>, JsonFault> readValue(JsonValue value) {
    bool isNull = false;
    if (value.is_null().get(isNull)) return tl::unexpected(JsonFault::malformed);
    if (isNull) return std::optional<T>();
    T read;
    simdjson::error_code error = value.get(read);
    if constexpr (std::is_same_v<T, std::int64_t>) {
        double number = 0;
        if (error && !value.get(number) && number >= -9.2e18 && number <= 9.2e18 &&
            static_cast<double>(static_cast<std::int64_t>(number)) == number) {
            read = static_cast<std::int64_t>(number);
            error = simdjson::SUCCESS;
        }
    }
    if (!error) return std::optional<T>(read);
    return tl::unexpected(error == simdjson::TAPE_ERROR || error == simdjson::STRING_ERROR
                              ? JsonFault::malformed
                              : JsonFault::wrongType);
}

/// The member `key` of `object` as readValue reads it; an absent member is nothing.
template <typename T>
tl::expected<std::optional<T>, JsonFault> readMember(JsonObject& object, std::string_view key) {
    JsonValue value;
    const simdjson::error_code error = object.find_field_unordered(key).get(value);
    if (error == simdjson::NO_SUCH_FIELD) return std::optional<T>();
    if (error) return tl::unexpected(JsonFault::malformed);
    return readValue<T>(value);
}

/// As readMember, for formats that are not ours: a member of another type counts as absent.
template <typename T>
std::optional<T> memberIfPresent(JsonObject& object, std::string_view key) {
    return readMember<T>(object, key).value_or(std::nullopt);
}

// Compiled once for all who read, since they take long; a build that optimises inlines them still.
extern template tl::expected<std::optional<std::string_view>, JsonFault> readValue(JsonValue);
extern template tl::expected<std::optional<std::int64_t>, JsonFault> readValue(JsonValue);
extern template tl::expected<std::optional<double>, JsonFault> readValue(JsonValue);
extern template tl::expected<std::optional<bool>, JsonFault> readValue(JsonValue);
extern template tl::expected<std::optional<JsonObject>, JsonFault> readValue(JsonValue);
extern template tl::expected<std::optional<JsonArray>, JsonFault> readValue(JsonValue);

}  // namespace fleetwise
