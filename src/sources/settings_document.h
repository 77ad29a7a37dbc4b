#pragma once

#include "foundation/json.h"

#include <optional>
#include <string>
#include <string_view>

namespace fleetwise {

/// The object that the text of an agent's settings file holds, fit to be written back with every
/// value as it was: a number stands in it as a binary value, which JSON text has no other use for,
/// that holds its digits. Nothing where the text is not one JSON object or is nested deeper than
/// 1000 levels. What the agent itself reads is read: a byte order mark, numbers of any size, and
/// half surrogates and bytes that are not UTF-8, which become U+FFFD. Of members with the same name
/// the last one counts.
std::optional<Json> parseSettings(std::string_view text);

/// The text of a document of parseSettings, to which others of our own may have been added: one
/// element per line, indented by two blanks, keys sorted, only escaped what has to be.
std::string printSettings(const Json& document);

}  // namespace fleetwise
