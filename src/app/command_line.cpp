#include "app/command_line.h"

#include <algorithm>
#include <array>
#include <utility>

namespace fleetwise {

namespace {

constexpr std::array<std::pair<std::string_view, Job>, 11> switches{{
    {"--dump", Job::report},
    {"--install-hooks", Job::installHooks},
    {"--uninstall-hooks", Job::uninstallHooks},
    {"--write-iconset", Job::writeIconset},
    {"--write-og-image", Job::writeSocialImage},
    {"--write-dmg-background", Job::writeDiskBackground},
    {"--check-dmg-background", Job::checkDiskBackground},
    {"--dmg-layout", Job::printDiskLayout},
    {"--verify-licence", Job::verifyLicence},
    {"--selftest", Job::selfTest},
    {"--stall-probe", Job::stallProbe},
}};

}  // namespace

Command parseCommand(const std::vector<std::string>& arguments) {
    if (arguments.empty()) return {};
    Command command{.name = arguments.front()};
    if (!command.name.starts_with("--")) return command;
    if (arguments.size() > 1) command.argument = arguments[1];
    const auto known = std::find_if(switches.begin(), switches.end(),
                                    [&](const auto& entry) { return entry.first == command.name; });
    command.job = known == switches.end() ? Job::unknownSwitch : known->second;
    return command;
}

std::string unknownSwitchMessage(std::string_view argument) {
    return "Fleetwise: unbekannter Schalter " + std::string(argument) +
           "\nBekannt sind: --dump, --install-hooks, --uninstall-hooks, --selftest,\n"
           "--verify-licence, --write-iconset, --write-og-image,\n"
           "--write-dmg-background, --check-dmg-background, --dmg-layout,\n"
           "--stall-probe\n";
}

}  // namespace fleetwise
