#pragma once

#include "foundation/date.h"

#include <nlohmann/json.hpp>

#include <optional>
#include <string>
#include <string_view>

namespace fleetwise {

/// A JSON document of our own files and settings: keys sorted, unknown keys kept.
using Json = nlohmann::json;

/// The document, or nothing where `text` is not valid JSON. Never throws.
std::optional<Json> parseJson(std::string_view text);

/// Compact text with sorted keys; bytes that are not UTF-8 are replaced by U+FFFD.
std::string encodeJson(const Json& document);

/// The member `key` of an object if it has the type of T (numbers of either kind for numbers);
/// nothing where `document` is no object or the member is absent, null or of another type.
template <typename T>
std::optional<T> member(const Json& document, std::string_view key) {
    const auto found = document.find(key);
    if (found == document.end()) return {};
    if constexpr (std::is_same_v<T, Date>) {
        if (!found->is_string()) return {};
        return parseInternetDate(found->get_ref<const std::string&>());
    } else if constexpr (std::is_same_v<T, bool>) {
        return found->is_boolean() ? std::optional<T>(found->get<T>()) : std::nullopt;
    } else if constexpr (std::is_arithmetic_v<T>) {
        return found->is_number() ? std::optional<T>(found->get<T>()) : std::nullopt;
    } else {
        return found->is_string() ? std::optional<T>(found->get<T>()) : std::nullopt;
    }
}

}  // namespace fleetwise
