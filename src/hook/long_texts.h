#pragma once

#include <cstddef>
#include <span>

namespace fleetwise::hook {

/// Texts in a payload are read up to about this many bytes.
inline constexpr std::size_t longTextBytes = 16 << 10;

/// Cuts every longer text of the JSON document in place, never within an escape, and returns what
/// is left of it. Most of a large payload is a tool's output, which is of no interest here and
/// would take the parser most of its time. JSON that is not valid stays so.
std::span<char> cutLongTexts(std::span<char> json);

}  // namespace fleetwise::hook
