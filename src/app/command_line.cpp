#include "app/command_line.h"

#include <algorithm>
#include <array>

namespace fleetwise {

namespace {

constexpr std::array<std::string_view, 10> switchesToCome{
    "--install-hooks",  "--uninstall-hooks",      "--write-iconset",
    "--write-og-image", "--write-dmg-background", "--check-dmg-background",
    "--dmg-layout",     "--verify-licence",       "--selftest",
    "--stall-probe",
};

}  // namespace

Command parseCommand(const std::vector<std::string>& arguments) {
    if (arguments.empty() || !arguments.front().starts_with("--")) return {};
    const std::string& argument = arguments.front();
    if (argument == "--dump") return {Job::report, argument};
    const bool isToCome =
        std::find(switchesToCome.begin(), switchesToCome.end(), argument) != switchesToCome.end();
    return {isToCome ? Job::notAvailable : Job::unknownSwitch, argument};
}

std::string unknownSwitchMessage(std::string_view argument) {
    return "Fleetwise: unbekannter Schalter " + std::string(argument) +
           "\nBekannt sind: --dump, --install-hooks, --uninstall-hooks, --selftest,\n"
           "--verify-licence, --write-iconset, --write-og-image,\n"
           "--write-dmg-background, --check-dmg-background, --dmg-layout,\n"
           "--stall-probe\n";
}

}  // namespace fleetwise
