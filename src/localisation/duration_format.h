#pragma once

#include "foundation/date.h"

#include <string>

namespace fleetwise {

/// A running time in the interface language, rounded down to its one or two largest units:
/// "45 s", "5 min", "2 h 5 min", "3 T 4 h". A second unit of zero is left out; below one second,
/// and for a negative length, it is "0 s".
std::string durationText(Seconds duration);

}  // namespace fleetwise
