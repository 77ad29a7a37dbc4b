#pragma once

#include "app/self_test.h"

#include <vector>

namespace fleetwise {

/// Whether the rules by which the program tells, runs and posts hold. Nothing is told, run or
/// posted.
std::vector<Check> reactionChecks();

}  // namespace fleetwise
