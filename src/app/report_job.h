#pragma once

#include "foundation/user_defaults.h"

#include <string>

namespace fleetwise {

/// Collects the fleet once cold and once warm, as the application does, and returns the
/// diagnostic report. Sets the interface language by the settings.
std::string runReport(UserDefaults& defaults);

}  // namespace fleetwise
