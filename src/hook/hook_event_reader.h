#pragma once

#include "hook/hook_event.h"

#include <span>

namespace fleetwise::hook {

/// Reads the event's JSON, which is unescaped in place and must be followed by parserPadding zero
/// bytes, into everything but `name`. False where the text is not JSON. Escapes of half surrogate
/// pairs are forgiven, texts longer than longTextBytes are cut, and keys of another type than
/// expected count as missing.
bool readHookEvent(std::span<char> payload, HookEvent& event);

}  // namespace fleetwise::hook
