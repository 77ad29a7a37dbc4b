#include "hook/requests.h"

#include "hook/tool_activity.h"

#include <algorithm>

namespace fleetwise::hook {

namespace {

/// In seconds: a tool that began this long after a question was asked is not one that was running
/// beside it.
constexpr double siblingDelay = 1;

template <typename Predicate>
void removeRequests(StatusRecord& record, double now, Predicate matches) {
    if (record.requests.removeIf(matches)) record.stateTs = now;
}

bool isAnsweredBy(const HookEvent& event, const Request& request, double now) {
    if (request.agent != event.agentId) return false;
    if (request.tool.empty() || !event.durationMs) return true;
    if (request.tool == event.toolName && request.activity == toolActivity(event)) return true;
    // The agent went on to another tool, as it does after a refusal, of which no event tells.
    return now - *event.durationMs / 1000 > request.at + siblingDelay;
}

}  // namespace

bool isFromSubagent(const HookEvent& event) {
    return !event.agentId.empty();
}

bool isAsking(SessionState state) {
    return state == SessionState::decision || state == SessionState::waiting;
}

bool isPending(const StatusRecord& record) {
    return isAsking(shownState(record));
}

void ask(StatusRecord& record, const HookEvent& event, SessionState state, std::string_view message,
         double now) {
    const Request request{event.agentId, event.toolName, toolActivity(event), message, state, now};
    record.requests.removeIf([&](const Request& known) {
        return known.agent == request.agent && known.tool == request.tool &&
               known.activity == request.activity;
    });
    record.requests.add(request);
    record.stateTs = now;
}

void takeAnswers(StatusRecord& record, const HookEvent& event, double now) {
    removeRequests(record, now,
                   [&](const Request& request) { return isAnsweredBy(event, request, now); });
}

void takeDialogAnswers(StatusRecord& record, double now) {
    removeRequests(record, now, [](const Request& request) {
        return request.tool.empty() && request.state == SessionState::decision;
    });
}

void withdraw(StatusRecord& record, std::string_view agent, double now) {
    removeRequests(record, now, [&](const Request& request) { return request.agent == agent; });
}

void withdrawEnded(StatusRecord& record, double now) {
    removeRequests(record, now, [&](const Request& request) {
        const auto ids = record.subagents.all();
        return std::find(ids.begin(), ids.end(), request.agent) == ids.end();
    });
}

}  // namespace fleetwise::hook
