#pragma once

#include "hook/hook_event.h"
#include "hook/status_record.h"

#include <string_view>

namespace fleetwise::hook {

// What runs beside the session's own turn: subagents, commands, watches, planned wake-ups.

/// Counts a subagent once, however often it is said to have started.
void countSubagent(StatusRecord& record, std::string_view id);

/// Takes a subagent off the count; whether it was on it.
bool discountSubagent(StatusRecord& record, std::string_view id);

/// Notes what the end of the event's tool leaves running or planned.
void countLaunches(StatusRecord& record, const HookEvent& event, double now);

/// Replaces what was counted by the agent's own list of what runs, where the event has one. What
/// was known before keeps its start.
void recount(StatusRecord& record, const HookEvent& event, double now);

/// Takes a task that has ended off the counts, whatever it was.
void discountTask(StatusRecord& record, std::string_view id);

}  // namespace fleetwise::hook
