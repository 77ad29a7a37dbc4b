#include "session/session_state.h"

#include "localisation/localisation.h"

namespace fleetwise {

namespace {

struct Names {
    std::string_view raw;
    Text label;
    Text shortLabel;
};

/// In the order of SessionState.
constexpr std::array<Names, allSessionStates.size()> names{{
    {"decision", "Entscheidung nötig"_text, "Entscheidung"_text},
    {"waiting", "Wartet auf Eingabe"_text, "Wartet"_text},
    {"failed", "Abgebrochen"_text, "Fehler"_text},
    {"done", "Antwort bereit"_text, "Fertig"_text},
    {"working", "Arbeitet"_text, "Arbeitet"_text},
    {"waitingForSubagents", "Wartet auf Unteragenten"_text, "Unteragenten"_text},
    {"compacting", "Verdichtet Kontext"_text, "Verdichtet"_text},
    {"idle", "Bereit"_text, "Bereit"_text},
    {"scheduled", "Geplant"_text, "Geplant"_text},
    {"unknown", "Unbekannt"_text, "?"_text},
    {"dormant", "Ruhend"_text, "Ruhend"_text},
}};

const Names& namesOf(SessionState state) {
    return names[static_cast<std::size_t>(state)];
}

}  // namespace

std::string_view rawValue(SessionState state) {
    return namesOf(state).raw;
}

std::optional<SessionState> sessionStateFrom(std::string_view rawValue) {
    for (const SessionState state : allSessionStates) {
        if (namesOf(state).raw == rawValue) return state;
    }
    return {};
}

std::string label(SessionState state) {
    return localised(namesOf(state).label);
}

std::string shortLabel(SessionState state) {
    return localised(namesOf(state).shortLabel);
}

}  // namespace fleetwise
