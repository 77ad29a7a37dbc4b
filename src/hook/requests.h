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

/// Notes which requests the end of the event's tool shows to be answered.
void takeAnswers(StatusRecord& record, const HookEvent& event, double now);

/// Notes that questions which no tool's call waits for were answered.
void takeDialogAnswers(StatusRecord& record, double now);

/// Notes that the subagent, or with an empty id the session itself, asks nothing any more.
void withdraw(StatusRecord& record, std::string_view agent, double now);

/// Notes that nothing is asked any more but by subagents that go on.
void withdrawEnded(StatusRecord& record, double now);

}  // namespace fleetwise::hook
