#include "app/command_line.h"

#include <array>
#include <utility>

namespace fleetwise {

namespace {

constexpr std::array<std::pair<std::string_view, Job>, 11> switches{{
    {"--dump", Job::report},
    {"--install-hooks", Job::installHooks},
    {"--uninstall-hooks", Job::uninstallHooks},
    {"--selftest", Job::notAvailable},
    {"--verify-licence", Job::notAvailable},
    {"--write-iconset", Job::notAvailable},
    {"--write-og-image", Job::notAvailable},
    {"--write-dmg-background", Job::notAvailable},
    {"--check-dmg-background", Job::notAvailable},
    {"--dmg-layout", Job::notAvailable},
    {"--stall-probe", Job::notAvailable},
}};

}  // namespace

Command parseCommand(const std::vector<std::string>& arguments) {
    if (arguments.empty() || !arguments.front().starts_with("--")) return {};
    const std::string& argument = arguments.front();
    for (const auto& [name, job] : switches) {
        if (argument == name) return {job, argument};
    }
    return {Job::unknownSwitch, argument};
}

std::string unknownSwitchMessage(std::string_view argument) {
    return "Fleetwise: unbekannter Schalter " + std::string(argument) +
           "\nBekannt sind: --dump, --install-hooks, --uninstall-hooks, --selftest,\n"
           "--verify-licence, --write-iconset, --write-og-image,\n"
           "--write-dmg-background, --check-dmg-background, --dmg-layout,\n"
           "--stall-probe\n";
}

}  // namespace fleetwise
