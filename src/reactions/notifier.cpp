#include "reactions/notifier.h"

#include "localisation/localisation.h"
#include "localisation/money_format.h"
#include "reactions/resume_command.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <string>
#include <utility>
#include <variant>

namespace fleetwise {

namespace {

/// In whole percent, and no number that is none.
int wholePercent(double percent) {
    constexpr double most = 1e6;
    return static_cast<int>(std::lround(std::clamp(percent, 0.0, most)));
}

std::string subtitleOf(const OwnGoals::Breach& breach) {
    return std::holds_alternative<OwnGoals::CostBreach>(breach)
               ? localised("Kostengrenze erreicht"_text)
               : localised("Anteil am Fünf-Stunden-Fenster erreicht"_text);
}

std::string bodyOf(const OwnGoals::Breach& breach) {
    if (const auto* const cost = std::get_if<OwnGoals::CostBreach>(&breach)) {
        return localisedFormat("%@ von %@"_text, moneyText(cost->usd), moneyText(cost->limit));
    }
    return localisedFormat("%d %% des Fensters"_text,
                           wholePercent(std::get<OwnGoals::WindowBreach>(breach).share));
}

/// Whether the rules let a session in this state notify, wherever the user looks.
bool isWanted(const Session& session, const ReactionRules& rules) {
    return rules.notifyingStates.contains(session.state) &&
           NotificationPolicy::notifies(session, rules.overrides, rules.newSessionsNotify);
}

/// Whether one that drives itself is told of at once, even where such are summed up.
bool comesThrough(SessionState state) {
    return state == SessionState::waiting || state == SessionState::decision ||
           state == SessionState::done;
}

constexpr bool isQuestion(SessionState state) {
    return state <= SessionState::waiting;
}

NotificationAction buttonFor(const Session& session) {
    const bool canResume =
        !session.isLive && ResumeCommand::resumeOnly(session.id, session.agent, "codex");
    return canResume ? NotificationAction::resume : NotificationAction::open;
}

std::string identifierWith(const std::string& subject, Date now) {
    return subject + "-" + std::to_string(static_cast<std::int64_t>(secondsSince1970(now)));
}

/// "3 × Fehler, 5 × Leerlauf", the most urgent first.
std::string countedStates(const std::vector<const Session*>& sessions) {
    std::map<SessionState, int> counts;
    for (const Session* session : sessions)
        ++counts[session->state];
    std::string text;
    for (const auto& [state, count] : counts) {
        if (!text.empty()) text += ", ";
        text += localisedFormat("%d × %@"_text, count, shortLabel(state));
    }
    return text;
}

}  // namespace

Notifier::Notifier(NotificationCentre& givenCentre, Calendar givenCalendar,
                   IsFocused givenIsFocused)
    : centre(givenCentre), calendar(givenCalendar), isFocused(std::move(givenIsFocused)) {}

void Notifier::requestAuthorizationOnce() {
    if (std::exchange(hasRequested, true)) return;
    centre.requestAuthorization([answer = authorization](bool isGiven) { *answer = isGiven; });
}

void Notifier::report(const FleetChange& change) {
    requestAuthorizationOnce();
    withdrawWhatIsAnswered(change.sessions);
    const ReactionRules& rules = change.rules;
    if (!isAuthorized() || !rules.notificationsEnabled || rules.isMuted) {
        gathering.reset();
        spared.clear();
        return;
    }
    postWhatIsNoLongerSpared(change);
    for (const Transition& transition : change.transitions) {
        const Session& session = *transition.session;
        if (!transition.previous || !isWanted(session, rules)) continue;
        if (!rules.summarizesSelfDriven || !session.isSelfDriven() || comesThrough(session.state)) {
            if (!isSpared(session, change)) {
                post(session, change.now);
            } else if (isQuestion(session.state)) {
                spared.insert_or_assign(session.id, session.state);
            }
        } else if (session.state != SessionState::working) {
            gather(session, change.now);
        }
    }
    postGathered(change);
}

void Notifier::withdrawWhatIsAnswered(const std::vector<Session>& sessions) {
    if (calls.empty()) return;
    std::map<std::string, Call> open;
    for (const Session& session : sessions) {
        const auto call = calls.find(session.id);
        if (call != calls.end() && call->second.state == session.state) {
            open.insert(calls.extract(call));
        }
    }
    for (const auto& [id, answered] : std::exchange(calls, std::move(open)))
        centre.withdraw(answered.identifier);
}

void Notifier::postWhatIsNoLongerSpared(const FleetChange& change) {
    if (spared.empty()) return;
    std::map<std::string, SessionState> still;
    for (const Session& session : change.sessions) {
        const auto before = spared.find(session.id);
        if (before == spared.end() || before->second != session.state) continue;
        if (!isWanted(session, change.rules)) continue;
        if (isSpared(session, change)) {
            still.insert(*before);
        } else {
            post(session, change.now);
        }
    }
    spared = std::move(still);
}

void Notifier::gather(const Session& session, Date now) {
    if (!gathering) gathering = Gathering{.since = now, .states = {}};
    gathering->states[session.id] = session.state;
}

void Notifier::postGathered(const FleetChange& change) {
    if (!gathering) return;
    // In both directions: the clock may have been set.
    const Seconds passed = std::chrono::abs(change.now - gathering->since);
    if (change.rules.summarizesSelfDriven && passed < summaryTime) return;
    std::vector<const Session*> standing;
    for (const Session& session : change.sessions) {
        const auto gathered = gathering->states.find(session.id);
        if (gathered != gathering->states.end() && gathered->second == session.state &&
            isWanted(session, change.rules) && !isSpared(session, change)) {
            standing.push_back(&session);
        }
    }
    gathering.reset();
    if (standing.size() == 1) {
        post(*standing.front(), change.now);
    } else if (!standing.empty()) {
        postSummary(standing, change.now);
    }
}

bool Notifier::isSpared(const Session& session, const FleetChange& change) const {
    return change.rules.sparesFocusedSession && isFocused && isFocused(session, change.sessions);
}

void Notifier::post(const Session& session, Date now) {
    std::string identifier =
        identifierWith(session.id + "-" + std::string(rawValue(session.state)), now);
    centre.post({.identifier = identifier,
                 .title = session.displayName(),
                 .subtitle = label(session.state),
                 .body = session.detail(now, calendar),
                 .sessionId = session.id,
                 .hasSound = session.state == SessionState::waiting,
                 .button = buttonFor(session)});
    if (demandsAttention(session.state)) {
        calls[session.id] = {std::move(identifier), session.state};
    }
}

void Notifier::postSummary(const std::vector<const Session*>& sessions, Date now) {
    centre.post({.identifier = identifierWith("selbstgesteuert", now),
                 .title = localisedFormat("%d selbstgesteuerte Sitzungen"_text, sessions.size()),
                 .subtitle = {},
                 .body = countedStates(sessions),
                 .sessionId = {}});
}

void Notifier::announceBreach(const OwnGoals::Breach& breach, const Session& session) {
    requestAuthorizationOnce();
    if (!isAuthorized()) return;
    centre.post({.identifier = "grenze-" + OwnGoals::announcementKey(session.id, breach),
                 .title = session.displayName(),
                 .subtitle = subtitleOf(breach),
                 .body = bodyOf(breach),
                 .sessionId = session.id,
                 .hasSound = true,
                 .button = buttonFor(session)});
}

void Notifier::announceWindowReset() {
    requestAuthorizationOnce();
    if (!isAuthorized()) return;
    centre.post({.identifier = "fenster-zurückgesetzt",
                 .title = localised("Fünf-Stunden-Fenster zurückgesetzt"_text),
                 .subtitle = {},
                 .body = localised("Das Kontingent zählt wieder von vorn."_text),
                 .sessionId = {},
                 .hasSound = true});
}

}  // namespace fleetwise
