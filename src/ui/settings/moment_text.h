#pragma once

#include "foundation/date.h"

#include <string>

namespace fleetwise {

/// When something happened, in the interface language: "14:05:12" on the day of `now`, else
/// "27.08.2026 14:05".
std::string momentText(Date at, Date now, Calendar calendar);

}  // namespace fleetwise
