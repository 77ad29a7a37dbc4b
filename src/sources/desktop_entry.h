#pragma once

#include "foundation/environment_lookup.h"

#include <optional>
#include <string>
#include <vector>

namespace fleetwise {

/// The installed applications as their desktop files describe them, after the desktop-entry and
/// base-directory conventions of freedesktop.org.
class DesktopEntry {
public:
    /// The folders that hold desktop files, in the order they are searched, whether they exist or
    /// not: the user's, the system's, those of the package formats that keep their own.
    static std::vector<std::string> applicationFolders(const std::string& home,
                                                       const EnvironmentLookup& environment);

    /// The unlocalised name of the application `id` from the first of `folders` that has a
    /// readable desktop file of it with a name.
    static std::optional<std::string> nameOf(const std::string& id,
                                             const std::vector<std::string>& folders);
};

}  // namespace fleetwise
