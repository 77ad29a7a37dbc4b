#include "session/session_error.h"

#include "localisation/localisation.h"

#include <algorithm>
#include <array>
#include <utility>

namespace fleetwise {

namespace {

constexpr std::array<std::pair<std::string_view, Text>, 10> labels{{
    {"rate_limit", "Ratenlimit erreicht"_text},
    {"overloaded", "Server überlastet"_text},
    {"authentication_failed", "Anmeldung fehlgeschlagen"_text},
    {"oauth_org_not_allowed", "Organisation nicht freigegeben"_text},
    {"billing_error", "Abrechnungsproblem"_text},
    {"invalid_request", "Ungültige Anfrage"_text},
    {"model_not_found", "Modell nicht gefunden"_text},
    {"server_error", "Serverfehler"_text},
    {"max_output_tokens", "Antwortlänge erschöpft"_text},
    {"unknown", "Unbekannter Fehler"_text},
}};

}  // namespace

std::optional<std::string> SessionError::label(std::string_view code) {
    const auto found = std::find_if(labels.begin(), labels.end(),
                                    [&](const auto& label) { return label.first == code; });
    if (found == labels.end()) return {};
    return localised(found->second);
}

}  // namespace fleetwise
