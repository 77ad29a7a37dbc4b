#include "hook/requests.h"

#include "hook/tool_activity.h"

#include <algorithm>

namespace fleetwise::hook {

namespace {

/// In seconds: a tool that began this long after a question was asked is not one that was running
/// beside it.
constexpr double siblingDelay = 1;

template <typename Predicate>
bool removeRequests(StatusRecord& record, double now, Predicate matches) {
    const bool hasRemoved = record.requests.removeIf(
        [&](const Request& request) { return !hasOvertaken(request.at, now) && matches(request); });
    if (hasRemoved) record.stateTs = std::max(now, record.stateTs.value_or(now));
    return hasRemoved;
}

template <typename Predicate>
bool removeOldest(StatusRecord& record, double now, Predicate matches) {
    bool isFound = false;
    return removeRequests(record, now, [&](const Request& request) {
        if (isFound || !matches(request)) return false;
        isFound = true;
        return true;
    });
}

/// Whether a question came from a server, and not with a tool's call.
bool isDialog(const Request& request) {
    return request.tool.empty() && request.state == SessionState::decision;
}

/// Whether the agent went on to the event's tool after the request, as it does after an answer or
/// a refusal, of which no event tells.
bool hasGoneOn(const HookEvent& event, const Request& request, double now) {
    if (request.agent != event.agentId) return false;
    if (isDialog(request) && event.toolName.starts_with("mcp__")) return true;
    if (!event.durationMs) return true;
    const double began = now - *event.durationMs / 1000;
    // A notice of a request comes seconds after it, when no tool is about to begin beside it.
    const bool isNotice = request.tool.empty() && !isDialog(request);
    return began > request.at + (isNotice ? 0 : siblingDelay);
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
    record.requests.add({event.agentId, event.toolName, toolActivity(event), message, state, now});
    // Whoever asks is at work, even if that is the first that is heard of the session.
    if (record.state == SessionState::unknown) record.state = SessionState::working;
}

void takeAnswers(StatusRecord& record, const HookEvent& event, double now) {
    const std::string_view activity = toolActivity(event);
    const bool wasAsked = removeOldest(record, now, [&](const Request& request) {
        return request.agent == event.agentId && !request.tool.empty() &&
               request.tool == event.toolName && request.activity == activity;
    });
    // A tool that waited for its own answer tells nothing about other questions.
    if (wasAsked) return;
    removeRequests(record, now,
                   [&](const Request& request) { return hasGoneOn(event, request, now); });
}

void takeDialogAnswer(StatusRecord& record, double now) {
    removeOldest(record, now, isDialog);
}

void withdraw(StatusRecord& record, std::string_view agent, double now) {
    removeRequests(record, now, [&](const Request& request) { return request.agent == agent; });
}

void withdrawEnded(StatusRecord& record, double now) {
    removeRequests(record, now, [&](const Request& request) {
        return !record.subagents.contains(request.agent);
    });
}

}  // namespace fleetwise::hook
