#pragma once

#include "monitor/fleet_monitor.h"
#include "reactions/state_action.h"

#include <optional>
#include <string>
#include <vector>

namespace fleetwise {

/// The user's state actions in the settings. Each change reads them anew and touches one entry
/// only, so that whatever else stands there stays, also entries that are no action to us.
class StoredActions {
public:
    /// The monitor outlives this.
    explicit StoredActions(FleetMonitor& monitor);

    std::vector<StateAction> all() const;
    std::optional<StateAction> find(const std::string& id) const;

    /// Stores the action in place of the one with its id, else as the last one.
    void put(const StateAction& action);
    void remove(const std::string& id);

private:
    FleetMonitor& monitor;
};

}  // namespace fleetwise
