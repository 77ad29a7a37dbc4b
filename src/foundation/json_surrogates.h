#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace fleetwise {

/// JSON in which every escape of half a surrogate pair, such as "\ud83d" at the end of a text that
/// was cut within an emoji, is replaced by "\ufffd"; nothing where the text has none. Programs that
/// count characters in UTF-16 write such escapes, and parsers refuse them with all around them.
std::optional<std::string> withoutLoneSurrogates(std::string_view json);

}  // namespace fleetwise
