#include "reactions/state_timeline.h"

#include <algorithm>
#include <utility>

namespace fleetwise {

namespace {

/// When the session came into its state, which a pass finds only afterwards; never before the last
/// span, though the clock may have been set back.
Date entryDate(const Session& session, Date earliest, Date now) {
    const Date since = session.stateSince.value_or(now);
    return std::clamp(since, earliest, std::max(earliest, now));
}

}  // namespace

void StateTimeline::react(const FleetChange& change) {
    std::map<std::string, std::vector<Span>> next;
    for (const Session& session : change.sessions) {
        const auto known = bySession.find(session.id);
        auto spans = known == bySession.end() ? std::vector<Span>() : std::move(known->second);
        if (spans.empty()) {
            spans.push_back({session.state, entryDate(session, Date(), change.now)});
        } else if (spans.back().state != session.state) {
            const Date earliest = spans.back().since;
            spans.push_back({session.state, entryDate(session, earliest, change.now)});
        }
        if (spans.size() > mostSpans) spans.erase(spans.begin());
        next.emplace(session.id, std::move(spans));
    }
    bySession = std::move(next);
}

const std::vector<StateTimeline::Span>& StateTimeline::spans(const std::string& sessionId) const {
    static const std::vector<Span> none;
    const auto known = bySession.find(sessionId);
    return known == bySession.end() ? none : known->second;
}

}  // namespace fleetwise
