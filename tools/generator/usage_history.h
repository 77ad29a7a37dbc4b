#pragma once

#include "generator/output_file.h"
#include "generator/plan.h"

#include <string>

namespace fleetwise::generator {

/// Writes the desktop app's history of the plan's usage: a point every five minutes over the last
/// Plan::usageDays, some nights left out. Windows begin with their first use and end after five
/// hours, the weekly one at a fixed time; with several accounts the others are in use for an hour
/// each day, the first at all other times.
tl::expected<void, GeneratorError> writeUsageHistory(const Plan& plan, const std::string& path);

}  // namespace fleetwise::generator
