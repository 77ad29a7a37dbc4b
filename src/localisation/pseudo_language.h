#pragma once

#include <string>
#include <string_view>

namespace fleetwise {

/// A language of no people, for those who build the interface: the German wording with accents,
/// longer and in brackets. What shows without brackets was never looked up, what shows without the
/// closing one is cut.
inline constexpr std::string_view pseudoLanguage = "x-pseudo";

/// The wording in that language. Its placeholders (see TextPattern) stay as they are.
std::string pseudoWording(std::string_view german);

}  // namespace fleetwise
