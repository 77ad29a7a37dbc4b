#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace fleetwise {

/// The value of an environment variable; nothing where it is not set.
using EnvironmentLookup = std::function<std::optional<std::string>(const std::string& name)>;

/// The installed applications as their desktop files describe them (Desktop Entry Specification
/// and XDG Base Directory Specification of freedesktop.org).
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
