#pragma once

#include "foundation/environment_lookup.h"

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace fleetwise {

/// The languages the interface can be set to, as ISO 639-1 codes. German is the source language.
inline constexpr std::array<std::string_view, 6> interfaceLanguages{"de", "en", "fr",
                                                                    "es", "it", "pl"};

/// The languages of the user, the preferred one first, as tags such as "de-AT" or "en". By the
/// rules of GNU gettext: the locale is the first of LC_ALL, LC_MESSAGES and LANG that is set and
/// not empty; "C" and "POSIX" mean no language at all; otherwise the list LANGUAGE, where it
/// names any, stands for the locale's own language.
std::vector<std::string> preferredLanguages(const EnvironmentLookup& environment);

/// The language of the interface, one of interfaceLanguages. A `setting` that names one of them
/// is taken, and so is pseudoLanguage; any other, such as "system", leaves it to the first
/// preferred language that is among them whatever its region, and to German where none is.
std::string interfaceLanguage(std::string_view setting, const std::vector<std::string>& preferred);

}  // namespace fleetwise
