#pragma once

#include "fleet/fleet_snapshot.h"
#include "foundation/user_defaults.h"

#include <string>
#include <utility>
#include <vector>

namespace fleetwise {

/// The user's settings, by their keys in the user defaults. Belongs to the main thread.
class Settings {
public:
    /// Registers the defaults of the settings with `defaults`, which must outlive this.
    explicit Settings(UserDefaults& defaults);

    /// Each key with the value that it reads as while it was never written, in a fixed order.
    static std::vector<std::pair<std::string, Json>> registeredDefaults();

    /// What a collection pass is to do.
    FleetSnapshot::Input snapshotInput() const;

    /// "system", or a language such as "de".
    std::string language() const;

private:
    UserDefaults& defaults;
};

}  // namespace fleetwise
