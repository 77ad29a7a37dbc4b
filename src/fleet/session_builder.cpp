// Which source fills which field. Each function below takes one source; the order in which a
// builder calls them is the order of precedence, since a field that is filled stays as it is. A
// rollout comes after the record and takes the fields it knows of over.

#include "fleet/session_builder.h"

#include "fleet/fleet_snapshot.h"
#include "sources/codex_store.h"
#include "sources/host_applications.h"

#include <algorithm>

namespace fleetwise {

namespace {

constexpr Seconds foreignLiveTime{86'400};

template <typename Value>
void fill(std::optional<Value>& field, const std::optional<Value>& value) {
    if (!field) field = value;
}

void noteActivity(Session& session, const std::optional<Date>& date) {
    if (date) session.lastActivityAt = std::max(session.lastActivityAt.value_or(*date), *date);
}

/// When the hook last heard of the session's own state, not of its subagents.
Date stateDate(const StatusStore::Record& record) {
    return record.stateTs.value_or(lastEventDate(record));
}

/// When the recorded state began.
Date recordedSince(const StatusStore::Record& record, SessionState state) {
    if (state == SessionState::done && record.doneAt) return *record.doneAt;
    if (isBusy(state) && record.turnStartedAt) return *record.turnStartedAt;
    return stateDate(record);
}

void takeRecord(Session& session, const StatusStore::Record& record) {
    session.agent = SessionAgent(record.agent.value_or(std::string()));
    session.lastEventAt = lastEventDate(record);
    session.lastEvent = record.event;
    session.wakeupAt = record.wakeupAt;
    session.lastTool = record.tool;
    session.activity = record.activity;
    session.lastMessage = record.message;
    session.turnStartedAt = record.turnStartedAt;
    session.subagentCount = std::max<std::int64_t>(0, record.subagents.value_or(0));
    session.monitors = StatusStore::watches(&record);
    fill(session.cwd, record.cwd);
    fill(session.permissionMode, record.permissionMode);
    noteActivity(session, session.lastEventAt);
}

void takeDesktop(Session& session, const DesktopMetadata& desktop) {
    fill(session.title, desktop.title);
    fill(session.cwd, desktop.cwd);
    fill(session.effort, desktop.effort);
    fill(session.permissionMode, desktop.permissionMode);
    session.desktopError = desktop.error;
    noteActivity(session, desktop.lastActivityAt);
}

SessionState repairedState(const StatusStore::Record& record) {
    return StatusStore::repairedState(record.state, record.event, record.subagents);
}

/// The reported state as it is shown: with subagents still running, with its claim on attention
/// run out, or planned for later.
void showState(Session& session, const StateFinding& finding, const BuildingRules& rules) {
    session.state = FleetSnapshot::waitingForSubagents(finding.state, session.subagentCount,
                                                       session.lastEventAt, rules.now);
    const bool claimsAttention =
        session.state == SessionState::done || session.state == SessionState::failed;
    if (claimsAttention && session.stateSince &&
        rules.now - *session.stateSince > rules.doneGracePeriod) {
        session.state = SessionState::idle;
    }
    session.state = FleetSnapshot::effectiveState(session.state, session.wakeupAt, rules.now);
}

/// The state of a session whose process is gone: what ran with it runs no longer.
void endSession(Session& session) {
    session.subagentCount = 0;
    session.wakeupAt.reset();
    session.monitors.clear();
    session.state = SessionState::dormant;
    session.stateSince = session.lastActivityAt;
}

/// Moves all but the state, which the rollout and the hook's record may tell differently.
void takeRollout(Session& session, CodexThread& thread) {
    CodexRollout& rollout = thread.rollout;
    session.agent = SessionAgent("codex");
    const auto [origin, bundleId] = CodexStore::attribution(rollout);
    session.origin = origin;
    if (const auto host = bundleId ? HostApplications::ofBundleId(*bundleId) : std::nullopt) {
        session.hostApp = host->name;
        session.hostBundleId = host->bundleId;
    }
    session.title = std::move(rollout.title);
    if (!session.title) session.title = TranscriptReader::cleanedPrompt(rollout.firstPrompt);
    if (rollout.cwd) session.cwd = std::move(rollout.cwd);
    session.model = std::move(rollout.model);
    session.effort = std::move(rollout.effort);
    session.startedAt = rollout.startedAt;
    session.codexContextWindow = rollout.contextWindow;
    session.subagentCount = std::max(session.subagentCount, thread.runningSubagents);
    session.lastEventAt =
        std::max(session.lastEventAt.value_or(thread.lastActivityAt), thread.lastActivityAt);
    noteActivity(session, session.lastEventAt);
    session.stats = TranscriptReader::Stats{.contextTokens = rollout.contextTokens,
                                            .outputTokens = rollout.outputTokens,
                                            .lastReply = std::move(rollout.lastReply)};
}

/// Whether the hook heard of a running session after its rollout last told its state.
bool isLaterWord(const StatusStore::Record& record, Date told) {
    return stateDate(record) > told && record.state != rawValue(SessionState::dormant);
}

/// Whether the record tells that the session runs where no process does: a question stays open for
/// a day, work that is recorded goes on for five minutes.
bool showsLife(const StatusStore::Record& record, const CodexThread& thread, Date now) {
    const Date heardAt = lastEventDate(record);
    if (heardAt <= thread.rollout.lastEventAt) return false;
    const SessionState state = repairedState(record);
    return (asksUser(record) && now - heardAt < foreignLiveTime) ||
           (isBusy(state) && isRecentWork(heardAt, now));
}

/// An error that the desktop app reported after the last event ended the turn.
void applyDesktopError(Session& session, StateFinding& finding, const DesktopMetadata* desktop) {
    if (desktop == nullptr || !desktop->error || !desktop->errorAt) return;
    if (session.lastEventAt && *desktop->errorAt <= *session.lastEventAt) return;
    finding.state = SessionState::failed;
    session.stateSince = desktop->errorAt;
}

}  // namespace

Date lastEventDate(const StatusStore::Record& record) {
    return record.eventTs.value_or(record.ts);
}

Session liveSession(const SessionRegistry::Entry& entry, const StatusStore::Record* record,
                    const DesktopMetadata* desktop, const BuildingRules& rules, bool& isUnsettled) {
    Session session;
    session.id = entry.sessionId;
    session.pid = entry.pid;
    session.isLive = true;
    session.origin = sessionOriginFrom(entry.entrypoint);
    if (session.origin == SessionOrigin::unknown && desktop != nullptr) {
        session.origin = SessionOrigin::desktop;
    }
    session.name = entry.userGivenName();
    session.cwd = entry.cwd;
    if (entry.startedAt) session.startedAt = dateFromMilliseconds(*entry.startedAt);
    if (record != nullptr) takeRecord(session, *record);
    if (desktop != nullptr) takeDesktop(session, *desktop);
    noteActivity(session, session.startedAt);
    noteActivity(session, entry.statusUpdatedAt);

    std::optional<SessionState> recorded;
    std::optional<Date> recordedAt;
    if (record != nullptr) {
        recorded = repairedState(*record);
        // A subagent's events make no older word about the session newer than the registry's.
        recordedAt = record->stateTs ? record->stateTs : session.lastEventAt;
    }
    StateFinding finding = reconciledState(recorded, recordedAt, entry, rules.now);
    isUnsettled = isUnsettled || finding.isUnsettled;
    if (finding.toldByRegistryAt) {
        session.stateSince = finding.toldByRegistryAt;
        // The registry stays busy while subagents run.
        if (finding.state == SessionState::idle) session.subagentCount = 0;
    } else if (record != nullptr) {
        session.stateSince = recordedSince(*record, finding.state);
    }
    applyDesktopError(session, finding, desktop);
    showState(session, finding, rules);
    return session;
}

Session dormantSession(const SessionHistory::Candidate& candidate,
                       const StatusStore::Record* record, const DesktopMetadata* desktop) {
    Session session;
    session.id = candidate.sessionId;
    session.origin = candidate.origin;
    if (record != nullptr) takeRecord(session, *record);
    if (desktop != nullptr) takeDesktop(session, *desktop);
    fill(session.cwd, candidate.cwd);
    fill(session.title, candidate.title);
    fill(session.effort, candidate.effort);
    noteActivity(session, candidate.lastActivityAt);
    endSession(session);
    return session;
}

Session foreignSession(const StatusStore::Record& record, const BuildingRules& rules) {
    Session session;
    session.id = record.sessionId;
    takeRecord(session, record);
    const StateFinding finding{.state = repairedState(record)};
    session.isLive = finding.state != SessionState::dormant &&
                     rules.now - *session.lastEventAt < foreignLiveTime;
    if (!session.isLive) {
        session.state = SessionState::dormant;
        session.stateSince = session.lastEventAt;
        return session;
    }
    session.stateSince = recordedSince(record, finding.state);
    showState(session, finding, rules);
    return session;
}

bool asksUser(const StatusStore::Record& record) {
    const SessionState state = repairedState(record);
    return state == SessionState::decision || state == SessionState::waiting;
}

Session codexSession(CodexThread thread, const StatusStore::Record* record,
                     const BuildingRules& rules) {
    Session session;
    session.id = std::move(thread.rollout.sessionId);
    session.pid = thread.pid;
    session.isLive = thread.isLive || (record != nullptr && showsLife(*record, thread, rules.now));
    if (record != nullptr) takeRecord(session, *record);
    takeRollout(session, thread);
    StateFinding finding{.state = thread.rollout.state};
    session.stateSince = thread.rollout.stateSince.value_or(thread.rollout.lastEventAt);
    if (record != nullptr && isLaterWord(*record, *session.stateSince)) {
        finding.state = repairedState(*record);
        session.stateSince = recordedSince(*record, finding.state);
    } else {
        session.turnStartedAt = thread.rollout.turnStartedAt;
        session.activity = std::move(thread.rollout.activity);
        session.lastMessage = std::move(thread.rollout.failure);
        session.lastEvent.reset();
        session.lastTool.reset();
        session.subagentCount = thread.runningSubagents;
    }
    if (session.isLive) {
        showState(session, finding, rules);
    } else {
        endSession(session);
    }
    return session;
}

}  // namespace fleetwise
