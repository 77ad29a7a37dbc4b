#pragma once

#include "hook/hook_event.h"

#include <string_view>

namespace fleetwise::hook {

/// One short line about what the event's tool is doing: a command's description or first line, a
/// file's name, a pattern, a host, a helper's task; else the tool's name. Empty without a tool.
std::string_view toolActivity(const HookEvent& event);

/// The first line of the text that is not blank, without white space at its ends.
std::string_view firstLine(std::string_view text);

}  // namespace fleetwise::hook
