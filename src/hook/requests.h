#pragma once

#include "hook/hook_event.h"
#include "hook/status_record.h"

#include <string_view>

namespace fleetwise::hook {

// What the user is asked for is kept apart from the state of the session itself, since one of its
// agents may ask while another goes on.

bool isFromSubagent(const HookEvent& event);

/// `decision` and `waiting`: the user is asked for something.
bool isAsking(SessionState state);

/// Whether the file shows that the user is asked for something.
bool isPending(const StatusRecord& record);

/// Notes that the event's agent asks the user with `message`; empty, its tool speaks for itself.
void ask(StatusRecord& record, const HookEvent& event, SessionState state, std::string_view message,
         double now);

// In what follows `now` is the time of the event that tells; what was asked later stays.

/// Takes back what the end of the event's tool shows to be answered.
void takeAnswers(StatusRecord& record, const HookEvent& event, double now);

/// Takes back the oldest question that no tool of the agent's own asks.
void takeDialogAnswer(StatusRecord& record, double now);

/// Takes back what the subagent asks, or with an empty id the session itself.
void withdraw(StatusRecord& record, std::string_view agent, double now);

/// Takes back all but what subagents ask that are counted as running.
void withdrawEnded(StatusRecord& record, double now);

}  // namespace fleetwise::hook
