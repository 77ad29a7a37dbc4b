#pragma once

#include <string_view>

namespace fleetwise::hook {

/// Appends one line about a fault to the file that $FLEETWISE_HOOK_LOG names; does nothing where
/// it names none. The agent is never told: all it could do is to bother the user.
void logFault(double now, std::string_view event, std::string_view fault);

}  // namespace fleetwise::hook
