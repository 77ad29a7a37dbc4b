#pragma once

#include "hook/hook_event.h"
#include "hook/status_record.h"

#include <optional>

namespace fleetwise::hook {

/// What the status file says after the event. `old` is what it said before, if there was a file;
/// `now` is when the event happened, in seconds since 1970. Nothing where there is nothing to
/// say: an event that is not known, or one that tells of no state while none was known. The rules
/// are listed in docs/status-file.md.
std::optional<StatusRecord> recordAfter(const std::optional<StatusRecord>& old,
                                        const HookEvent& event, double now);

}  // namespace fleetwise::hook
