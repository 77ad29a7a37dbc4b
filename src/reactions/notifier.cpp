#include "reactions/notifier.h"

#include "localisation/localisation.h"
#include "localisation/money_format.h"

#include <algorithm>
#include <cmath>
#include <string>
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

}  // namespace

void Notifier::announceBreach(const OwnGoals::Breach& breach, const Session& session) {
    centre.post({.identifier = "grenze-" + OwnGoals::announcementKey(session.id, breach),
                 .title = session.displayName(),
                 .subtitle = subtitleOf(breach),
                 .body = bodyOf(breach),
                 .sessionId = session.id});
}

void Notifier::announceWindowReset() {
    centre.post({.identifier = "fenster-zurückgesetzt",
                 .title = localised("Fünf-Stunden-Fenster zurückgesetzt"_text),
                 .subtitle = {},
                 .body = localised("Das Kontingent zählt wieder von vorn."_text),
                 .sessionId = {}});
}

}  // namespace fleetwise
