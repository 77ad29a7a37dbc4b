#pragma once

#include <cstddef>

namespace fleetwise::hook {

/// Zero bytes that must follow a text to be parsed: its end, and what may be loaded with it.
inline constexpr std::size_t parserPadding = 32;

}  // namespace fleetwise::hook
