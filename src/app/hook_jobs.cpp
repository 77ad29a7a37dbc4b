#include "app/hook_jobs.h"

#include "app/environment.h"
#include "localisation/localisation.h"
#include "sources/paths.h"

#include <fmt/format.h>

namespace fleetwise {

HookInstaller::Places hookPlacesOfThisUser() {
    return {.settingsFile = Paths::settingsFile(),
            .stateDir = Paths::stateDir(),
            .statusDir = Paths::statusDir(),
            .installedHook = Paths::installedHook(),
            .bundledHook = bundledHook()};
}

tl::expected<std::string, std::string> installHooks() {
    const auto places = hookPlacesOfThisUser();
    const auto backup = HookInstaller::install(places, currentDate());
    if (!backup) return tl::unexpected(installErrorText(backup.error()));
    const std::string events = fmt::format("{}", fmt::join(HookInstaller::events, ", "));
    std::string told =
        localisedFormat("Hooks registriert für: %@ (%@)"_text, events, places.settingsFile) + "\n";
    if (backup->path) told += localisedFormat("Sicherung liegt in %@"_text, *backup->path) + "\n";
    return told;
}

tl::expected<std::string, std::string> uninstallHooks() {
    const auto backup = HookInstaller::uninstall(hookPlacesOfThisUser(), currentDate());
    if (!backup) return tl::unexpected(installErrorText(backup.error()));
    return localised("Hooks von fleetwise entfernt. Fremde Hooks blieben unberührt."_text) + "\n";
}

}  // namespace fleetwise
