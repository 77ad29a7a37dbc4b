#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace fleetwise {

/// What the program was started for.
enum class Job {
    report,               ///< print the diagnostic report
    installHooks,         ///< install the hook program and its entries
    uninstallHooks,       ///< take the entries out again
    selfTest,             ///< run the built-in checks
    verifyLicence,        ///< check a licence text
    writeIconset,         ///< write the icon in all sizes into a folder
    writeSocialImage,     ///< write the picture for links to the program
    writeDiskBackground,  ///< write the background of the disk image's window
    checkDiskBackground,  ///< check such a background
    printDiskLayout,      ///< print where things stand in that window
    stallProbe,           ///< check that a blocked main thread is noticed
    unknownSwitch,
    application,  ///< no switch: the application itself
};

struct Command {
    Job job = Job::application;
    std::string name;      ///< the first argument, as it was given
    std::string argument;  ///< the second one, a switch's own

    bool operator==(const Command&) const = default;
};

/// Reads the arguments behind the program's path: the first decides, and only where it begins with
/// "--".
Command parseCommand(const std::vector<std::string>& arguments);

/// What is said about a switch that is not known, with the list of those that are.
std::string unknownSwitchMessage(std::string_view argument);

}  // namespace fleetwise
