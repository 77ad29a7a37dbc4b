#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace fleetwise {

/// What the program was started for.
enum class Job {
    report,          ///< print the diagnostic report
    installHooks,    ///< install the hook program and its entries
    uninstallHooks,  ///< take the entries out again
    notAvailable,    ///< a switch that this version knows but cannot carry out
    unknownSwitch,
    application,  ///< no switch: the application itself
};

struct Command {
    Job job = Job::application;
    std::string argument;  ///< the first argument, as it was given

    bool operator==(const Command&) const = default;
};

/// Reads the arguments behind the program's path: only the first one counts, and only where it
/// begins with "--".
Command parseCommand(const std::vector<std::string>& arguments);

/// What is said about a switch that is not known, with the list of those that are.
std::string unknownSwitchMessage(std::string_view argument);

}  // namespace fleetwise
