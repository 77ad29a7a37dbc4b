// Each event has one rule, which takes one step from the old record to the new. Hooks of one
// session run side by side, so that an event may get its turn after a later one: such a late event
// still counts what starts and ends, but has no say about the state.

#include "hook/state_rules.h"

#include "hook/requests.h"
#include "hook/running_work.h"
#include "hook/tool_activity.h"
#include "session/task_notice.h"

#include <algorithm>

namespace fleetwise::hook {

namespace {

/// In seconds: a prompt so soon after another is the same one, reported by a hook registered twice.
constexpr double repetition = 1;

struct Step {
    StatusRecord& record;
    const HookEvent& event;
    double now = 0;
    bool isLate = false;  ///< a later event has decided the state already
};

/// The agent works on a prompt and has not answered yet.
bool isTurnOpen(const StatusRecord& record) {
    return record.state == SessionState::working && record.turnStartedAt && !record.doneAt;
}

void decide(const Step& step, SessionState state) {
    step.record.state = state;
    step.record.decidedAt = step.now;
    step.record.stateTs = step.now;
}

/// The turn goes on, even where it seemed to be over.
void goOn(const Step& step) {
    if (isAsking(step.record.state)) step.record.message = {};
    decide(step, SessionState::working);
    step.record.doneAt.reset();
}

// The rules. Each returns whether the record shows the event as the one it rests on.

bool startSession(const Step& step) {
    if (step.isLate) return false;
    if (step.event.source == "compact") {
        // Within a turn this comes before or after the end of the compaction.
        if (!isBusy(step.record.state)) decide(step, SessionState::idle);
        return true;
    }
    StatusRecord cleared;
    cleared.sessionId = step.record.sessionId;
    cleared.agent = step.record.agent;
    cleared.cwd = step.record.cwd;
    cleared.permissionMode = step.record.permissionMode;
    step.record = cleared;
    decide(step, SessionState::idle);
    return true;
}

/// Whether the prompt comes while the agent has not answered the last one: its turn was interrupted
/// and took its helpers with it. Those in the background are listed again when a turn ends.
bool isAfterInterrupt(const Step& step) {
    return isTurnOpen(step.record) && !isTaskNotice(step.event.prompt) &&
           step.now - *step.record.turnStartedAt > repetition;
}

bool submitPrompt(const Step& step) {
    StatusRecord& record = step.record;
    if (const auto notice = TaskEndNotice::parse(step.event.prompt)) {
        discountTask(record, notice->taskId);
        withdraw(record, notice->taskId, step.now);
    }
    if (step.isLate) return false;
    if (isAfterInterrupt(step)) record.subagents.clear();
    withdrawEnded(record, step.now);
    record.message = {};
    record.tool = {};
    record.activity = {};
    record.error = {};
    if (record.wakeupAt && *record.wakeupAt <= step.now) record.wakeupAt.reset();
    record.turnStartedAt = step.now;
    goOn(step);
    return true;
}

bool startTool(const Step& step) {
    if (step.isLate) return false;
    step.record.tool = step.event.toolName;
    step.record.activity = toolActivity(step.event);
    // A subagent's tool says nothing about the session, which may long have answered.
    if (!isFromSubagent(step.event)) goOn(step);
    return true;
}

bool endTool(const Step& step) {
    countLaunches(step.record, step.event, step.now);
    takeAnswers(step.record, step.event, step.now);
    if (step.event.isInterrupt) withdraw(step.record, step.event.agentId, step.now);
    if (step.isLate) return false;
    if (isFromSubagent(step.event)) return true;
    if (step.event.isInterrupt) {
        step.record.turnStartedAt.reset();
        decide(step, SessionState::idle);
    } else {
        goOn(step);
    }
    return true;
}

/// The question, or the plan's heading; empty where the tool and its activity say what is asked.
std::string_view questionOf(const HookEvent& event) {
    if (!event.toolInput.question.empty()) return event.toolInput.question;
    const auto heading = firstLine(event.toolInput.plan);
    return heading.substr(std::min(heading.find_first_not_of("# "), heading.size()));
}

/// Whether a question still stands: one of a subagent's whatever the session itself has done since,
/// the session's own while it works.
bool stillAsks(const Step& step) {
    return !step.isLate || isFromSubagent(step.event) || step.record.state == SessionState::working;
}

bool requestPermission(const Step& step) {
    if (!stillAsks(step)) return false;
    const bool isQuestion =
        step.event.toolName == "AskUserQuestion" || step.event.toolName == "ExitPlanMode";
    if (!step.isLate && !isFromSubagent(step.event)) goOn(step);
    ask(step.record, step.event, isQuestion ? SessionState::decision : SessionState::waiting,
        questionOf(step.event), step.now);
    return true;
}

bool elicit(const Step& step) {
    if (!stillAsks(step)) return false;
    ask(step.record, step.event, SessionState::decision, step.event.message, step.now);
    return true;
}

enum class Notice { permission, question, answered, idle, other };

Notice kindOf(const HookEvent& event) {
    const std::string_view type = event.notificationType;
    if (type.empty()) {
        const auto says = [&](std::string_view word) {
            return event.message.find(word) != std::string_view::npos;
        };
        if (says("permission")) return Notice::permission;
        return says("waiting") ? Notice::idle : Notice::other;
    }
    if (type == "permission_prompt") return Notice::permission;
    if (type == "elicitation_dialog" || type == "elicitation_url_dialog" ||
        type == "agent_needs_input") {
        return Notice::question;
    }
    if (type == "elicitation_response" || type == "elicitation_complete") return Notice::answered;
    return type == "idle_prompt" ? Notice::idle : Notice::other;
}

/// The agent sits at its prompt. That is news only where no answer, failure or question is shown.
void noteIdleness(const Step& step) {
    StatusRecord& record = step.record;
    const bool hasAnswered = record.state == SessionState::done ||
                             (record.state == SessionState::working && record.doneAt);
    if (hasAnswered || record.state == SessionState::failed || isPending(record)) return;
    record.message = step.event.message;
    decide(step, SessionState::waiting);
}

bool notify(const Step& step) {
    if (step.isLate) return false;
    const auto askUnlessPending = [&](SessionState state) {
        if (isPending(step.record)) return;
        ask(step.record, step.event, state, step.event.message, step.now);
    };
    switch (kindOf(step.event)) {
        case Notice::permission:
            askUnlessPending(SessionState::waiting);
            break;
        case Notice::question:
            askUnlessPending(SessionState::decision);
            break;
        case Notice::answered:
            takeDialogAnswer(step.record, step.now);
            break;
        case Notice::idle:
            noteIdleness(step);
            break;
        case Notice::other:
            break;
    }
    return true;
}

bool startSubagent(const Step& step) {
    StatusRecord& record = step.record;
    countSubagent(record, step.event.agentId);
    if (step.isLate) return false;
    if (record.state == SessionState::idle || record.state == SessionState::unknown) {
        decide(step, SessionState::working);
    }
    return true;
}

bool stopSubagent(const Step& step) {
    StatusRecord& record = step.record;
    const bool wasCounted = discountSubagent(record, step.event.agentId);
    if (isFromSubagent(step.event)) withdraw(record, step.event.agentId, step.now);
    if (step.isLate || !wasCounted || isPending(record)) return false;
    // Readers take a session that is "working" since its last subagent stopped for done. Within
    // the session's own turn this event must not be the last, nor where it did not end well.
    const bool isWorking = record.state == SessionState::working && !isTurnOpen(record);
    if (!isWorking && record.state != SessionState::done) return false;
    decide(step, SessionState::working);
    if (record.subagents.isEmpty()) record.doneAt = step.now;
    return true;
}

bool startCompaction(const Step& step) {
    if (step.isLate) return false;
    if (step.event.trigger != "auto") step.record.turnStartedAt = step.now;
    decide(step, SessionState::compacting);
    return true;
}

bool endCompaction(const Step& step) {
    if (step.isLate) return false;
    const bool isWithinTurn = step.event.trigger == "auto";
    if (!isWithinTurn) step.record.turnStartedAt.reset();
    decide(step, isWithinTurn ? SessionState::working : SessionState::idle);
    return true;
}

void conclude(const Step& step, SessionState state) {
    withdrawEnded(step.record, step.now);
    step.record.message = step.event.lastAssistantMessage;
    decide(step, state);
}

bool stop(const Step& step) {
    StatusRecord& record = step.record;
    recount(record, step.event, step.now);
    if (!step.event.hasSessionCrons) record.wakeupAt.reset();
    if (step.isLate) return false;
    if (record.state != SessionState::done || !record.doneAt) record.doneAt = step.now;
    record.error = {};
    conclude(step, SessionState::done);
    return true;
}

bool fail(const Step& step) {
    if (step.isLate) return false;
    step.record.error = step.event.error;
    conclude(step, SessionState::failed);
    return true;
}

bool endSession(const Step& step) {
    if (step.isLate) return false;
    StatusRecord& record = step.record;
    if (isAsking(record.state)) record.message = {};
    record.requests.clear();
    record.subagents.clear();
    record.monitors.clear();
    record.wakeupAt.reset();
    decide(step, SessionState::dormant);
    return true;
}

enum class Speaker {
    anyone,
    session,     ///< a subagent's event of that name says nothing
    newSession,  ///< and it may speak even after the session has ended
};

struct Rule {
    std::string_view event;
    bool (*apply)(const Step&);
    Speaker speaker = Speaker::anyone;
};

constexpr Rule rules[] = {
    {"SessionStart", startSession, Speaker::newSession},
    {"UserPromptSubmit", submitPrompt, Speaker::newSession},
    {"PreToolUse", startTool},
    {"PostToolUse", endTool},
    {"PostToolUseFailure", endTool},
    {"Notification", notify},
    {"PermissionRequest", requestPermission},
    {"Elicitation", elicit},
    {"StopFailure", fail, Speaker::session},
    {"Stop", stop, Speaker::session},
    {"SubagentStart", startSubagent},
    {"SubagentStop", stopSubagent},
    {"PreCompact", startCompaction, Speaker::session},
    {"PostCompact", endCompaction, Speaker::session},
    {"SessionEnd", endSession, Speaker::session},
};

const Rule* ruleFor(std::string_view event) {
    const auto found = std::find_if(std::begin(rules), std::end(rules),
                                    [&](const Rule& rule) { return rule.event == event; });
    return found == std::end(rules) ? nullptr : found;
}

/// Makes the state that readers derive from the last event the recorded one, as the next event
/// takes that event's place.
void settle(StatusRecord& record) {
    const auto subagents = static_cast<std::int64_t>(record.subagents.all().size());
    if (!isThroughWithSubagents(record.state, record.event, subagents)) return;
    record.state = SessionState::done;
    if (!record.doneAt) record.doneAt = record.eventTs;
}

std::string_view agentOf(const HookEvent& event, std::string_view recorded) {
    if (event.transcriptPath.empty() && !recorded.empty()) return recorded;
    return event.transcriptPath.find("/.codex/") != std::string_view::npos ? "codex" : "claude";
}

void takeSurroundings(StatusRecord& record, const HookEvent& event) {
    record.agent = agentOf(event, record.agent);
    // A subagent may work in a folder and a mode of its own.
    if (isFromSubagent(event)) return;
    if (!event.cwd.empty()) record.cwd = event.cwd;
    if (!event.permissionMode.empty()) record.permissionMode = event.permissionMode;
}

}  // namespace

std::optional<StatusRecord> recordAfter(const std::optional<StatusRecord>& old,
                                        const HookEvent& event, double now) {
    const Rule* rule = ruleFor(event.name);
    if (rule == nullptr) return {};
    if (isFromSubagent(event) && rule->speaker != Speaker::anyone) return {};
    StatusRecord record = old.value_or(StatusRecord());
    if (record.state == SessionState::dormant && rule->speaker != Speaker::newSession) return {};
    record.sessionId = event.sessionId;
    settle(record);
    const bool isLate = hasOvertaken(record.decidedAt, now);
    if (!isLate) takeSurroundings(record, event);
    if (rule->apply({record, event, now, isLate})) record.event = event.name;
    if (!hasOvertaken(record.eventTs, now)) record.eventTs = now;
    if (!old && shownState(record) == SessionState::unknown) return {};
    return record;
}

}  // namespace fleetwise::hook
