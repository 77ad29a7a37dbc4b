#pragma once

#include "hook/hook_event.h"

#include <span>

namespace fleetwise::hook {

/// Reads the event's JSON, which is unescaped in place and must be followed by a NUL and 16 more
/// bytes, into everything but `name`. False where the text is not JSON; escapes of half surrogate
/// pairs are forgiven. Keys of another type than expected count as missing.
bool readHookEvent(std::span<char> payload, HookEvent& event);

}  // namespace fleetwise::hook
