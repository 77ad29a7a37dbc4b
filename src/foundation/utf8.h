#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace fleetwise {

/// Length in bytes of the well-formed UTF-8 sequence at the front of `text`, which must not be
/// empty; 0 where there is none (Unicode 15, table 3-7).
std::size_t utf8SequenceLength(std::string_view text);

/// U+FFFD, which stands where bytes made no character.
inline constexpr std::string_view replacementCharacter = "\xEF\xBF\xBD";

/// The text with each byte that belongs to no well-formed sequence replaced by U+FFFD.
std::string wellFormedUtf8(std::string_view text);

}  // namespace fleetwise
