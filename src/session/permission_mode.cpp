#include "session/permission_mode.h"

#include "localisation/localisation.h"

#include <algorithm>
#include <array>

namespace fleetwise {

namespace {

struct Mode {
    std::string_view raw;
    Text label;
    Text explanation;
};

constexpr std::array<Mode, 4> modes{{
    {"auto", "Auto"_text, "Automatikmodus: Werkzeuge laufen ohne Rückfrage"_text},
    {"acceptEdits", "Edits"_text, "Dateiänderungen werden ohne Rückfrage übernommen"_text},
    {"plan", "Plan"_text, "Planungsmodus: erst Vorschlag, dann Ausführung"_text},
    {"bypassPermissions", "Bypass"_text, "Alle Berechtigungsprüfungen übersprungen"_text},
}};

std::optional<std::string> textOf(std::optional<std::string_view> mode, Text Mode::*text) {
    const auto found = std::find_if(modes.begin(), modes.end(),
                                    [&](const Mode& known) { return known.raw == mode; });
    if (found == modes.end()) return {};
    return localised((*found).*text);
}

}  // namespace

std::optional<std::string> PermissionMode::label(std::optional<std::string_view> mode) {
    return textOf(mode, &Mode::label);
}

std::optional<std::string> PermissionMode::explanation(std::optional<std::string_view> mode) {
    return textOf(mode, &Mode::explanation);
}

}  // namespace fleetwise
