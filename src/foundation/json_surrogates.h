#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace fleetwise {

/// What takes the place of an escape of half a surrogate pair; it is as long as that.
inline constexpr std::string_view replacementEscape = "\\ufffd";

/// Where in a JSON text, from the position `from` on, the first escape of half a surrogate pair
/// stands, such as "\ud83d" at the end of a text that was cut within an emoji; npos where there is
/// none. `from` must not lie within an escape. Programs that count characters in UTF-16 write such
/// escapes, and parsers refuse them with all around them.
std::size_t findLoneSurrogate(std::string_view json, std::size_t from = 0);

/// The text with each of them replaced; nothing where it has none.
std::optional<std::string> withoutLoneSurrogates(std::string_view json);

}  // namespace fleetwise
