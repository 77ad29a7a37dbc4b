#pragma once

#include "usage/usage_overview.h"

namespace fleetwise {

/// Where quota, plans and goals of this user are read.
UsageCollector::Places usagePlacesOfThisUser();

}  // namespace fleetwise
