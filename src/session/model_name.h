#pragma once

#include <string>
#include <string_view>

namespace fleetwise {

/// A model's id as people call it: "claude-opus-5-5" and "claude-opus-5-5-20260801" are
/// "Opus 5.5", with " 1M" behind it for the variant "[1m]" of the large context. Ids of any other
/// form stay as they are, "<synthetic>" (an agent's own message in a model's place) is empty.
std::string displayModelName(std::string_view id);

}  // namespace fleetwise
