#pragma once

#include "foundation/json_surrogates.h"

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
        text = mended(text);
        // A search for members leaves its bounds on invalid text, so that is found out before.
        if (validator.parse(text.data(), text.size(), /*realloc_if_needed=*/false).error()) {
            return false;
        }
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
        text = mended(text);
        simdjson::ondemand::document document;
        JsonObject object;
        if (!open(text, document, object)) return false;
        visit(object);
        // Only a walk to the end tells a torn object from a whole one.
        if (!document.is_alive() || object.reset().error() || object.raw_json().error()) {
            return false;
        }
        return document.current_location().error() == simdjson::OUT_OF_BOUNDS;
    }

private:
    bool open(std::string_view text, simdjson::ondemand::document& document, JsonObject& object) {
        return !parser.iterate(text.data(), text.size(), text.size() + jsonPadding).get(document) &&
               !document.get_object().get(object);
    }

    /// The text without halves of surrogate pairs, in `copy` where it had any.
    std::string_view mended(std::string_view text) {
        auto changed = withoutLoneSurrogates(text);
        if (!changed) return text;
        copy = *std::move(changed);
        copy.reserve(copy.size() + jsonPadding);
        return copy;
    }

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

}  // namespace fleetwise
