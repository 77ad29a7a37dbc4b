// Apart from the states themselves, which the hook program shares without any texts.

#include "localisation/localisation.h"
#include "session/session_state.h"

namespace fleetwise {

namespace {

struct Names {
    Text label;
    Text shortLabel;
};

/// In the order of SessionState.
constexpr std::array<Names, allSessionStates.size()> names{{
    {"Entscheidung nötig"_text, "Entscheidung"_text},
    {"Wartet auf Eingabe"_text, "Wartet"_text},
    {"Abgebrochen"_text, "Fehler"_text},
    {"Antwort bereit"_text, "Fertig"_text},
    {"Arbeitet"_text, "Arbeitet"_text},
    {"Wartet auf Unteragenten"_text, "Unteragenten"_text},
    {"Verdichtet Kontext"_text, "Verdichtet"_text},
    {"Bereit"_text, "Bereit"_text},
    {"Geplant"_text, "Geplant"_text},
    {"Unbekannt"_text, "?"_text},
    {"Ruhend"_text, "Ruhend"_text},
}};

const Names& namesOf(SessionState state) {
    return names[static_cast<std::size_t>(state)];
}

}  // namespace

std::string label(SessionState state) {
    return localised(namesOf(state).label);
}

std::string shortLabel(SessionState state) {
    return localised(namesOf(state).shortLabel);
}

}  // namespace fleetwise
