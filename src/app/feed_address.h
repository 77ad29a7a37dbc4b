#pragma once

#include "monitor/settings.h"

#include <string>

namespace fleetwise {

/// Where the update feed is: the setting `feedURL`, else the address that this program was built
/// with; empty where there is neither, and then no feed is looked into.
std::string feedAddress(const Settings& settings);

}  // namespace fleetwise
