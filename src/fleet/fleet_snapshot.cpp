// The rules and the frame of a collection pass; its phases are in collection_pass.cpp.

#include "fleet/fleet_snapshot.h"

#include "fleet/collection_pass.h"

#include <algorithm>

namespace fleetwise {

namespace {

constexpr Seconds subagentPatience{1200};
constexpr Seconds pruneInterval{3600};

FleetSnapshot::Input preview(FleetSnapshot::Input input) {
    input.dormantMaxAge = Seconds(0);
    input.keepRegardlessOfAge.clear();
    input.includeStats = false;
    return input;
}

}  // namespace

bool FleetSnapshot::Shared::shouldPrune(Date now, Seconds every) {
    const std::lock_guard guard(lock);
    if (now - lastPrune < every) return false;
    lastPrune = now;
    return true;
}

FleetSnapshot::Collection FleetSnapshot::collect(const Input& wanted, const Sources& sources,
                                                 Shared& shared, Date now) {
    const Input input = wanted.isPreview ? preview(wanted) : wanted;
    CollectionPass pass(input, sources, now);
    pass.time("Desktop-Metadaten", [&] { pass.loadDesktopMetadata(); });
    pass.time("Statusdateien", [&] { pass.loadStatusRecords(); });
    pass.time("Laufende Sitzungen", [&] { pass.addLiveSessions(); });
    pass.time("Ruhende Sitzungen", [&] { pass.addDormantSessions(); });
    pass.time("Codex", [&] { pass.addCodexSessions(); });
    pass.time("Fremde Werkzeuge", [&] { pass.addForeignSessions(); });
    pass.time("Codex ausblenden", [&] { pass.hideCodex(); });
    pass.time("Statistik je Sitzung", [&] { pass.describeSessions(); });
    pass.time("Aufräumen", [&] {
        if (!input.isPreview && shared.shouldPrune(now, pruneInterval)) pass.prune();
    });
    pass.time("Sortieren", [&] { pass.sort(); });
    const std::lock_guard guard(shared.lock);
    shared.timings = pass.takeTimings();
    return pass.takeCollection();
}

SessionState FleetSnapshot::waitingForSubagents(SessionState state, std::int64_t subagents,
                                                std::optional<Date> lastEventAt, Date now) {
    const bool mayWait = state == SessionState::working || state == SessionState::done;
    if (!mayWait || subagents < 1 || !lastEventAt) return state;
    return now - *lastEventAt <= subagentPatience ? SessionState::waitingForSubagents : state;
}

SessionState FleetSnapshot::effectiveState(SessionState state, std::optional<Date> wakeupAt,
                                           Date now) {
    const bool yields = std::find(yieldsToSchedule.begin(), yieldsToSchedule.end(), state) !=
                        yieldsToSchedule.end();
    return yields && wakeupAt && *wakeupAt > now ? SessionState::scheduled : state;
}

std::vector<Session> FleetSnapshot::withoutCodex(std::vector<Session> sessions) {
    std::erase_if(sessions, [](const Session& session) { return session.agent.isCodex(); });
    return sessions;
}

}  // namespace fleetwise
