#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace fleetwise {

/// A graphical application that sessions run in: a terminal, an editor, the desktop app.
struct HostApplication {
    std::string name;      ///< as people know it
    std::string bundleId;  ///< on Linux the name of its desktop file without ".desktop"

    bool operator==(const HostApplication&) const = default;
};

/// The terminals and editors known by their program.
class HostApplications {
public:
    /// The application whose program stands at the full path `executable`; nothing for any other
    /// program.
    static std::optional<HostApplication> ofExecutable(std::string_view executable);

    /// The application that macOS knows by this identifier, as it is known here; nothing for one
    /// that is not among them.
    static std::optional<HostApplication> ofBundleId(std::string_view bundleId);

    /// The desktop-file id within the name of a session manager's unit, after the "Desktop
    /// Environments" conventions of systemd: "app-gnome-org.gnome.Terminal-4711.scope" and
    /// "app-org.kde.konsole@8d2c.service" carry "org.gnome.Terminal" and "org.kde.konsole".
    /// Nothing for other units, and for ids that are no plain file name.
    static std::optional<std::string> idOfUnit(std::string_view unit);
};

}  // namespace fleetwise
