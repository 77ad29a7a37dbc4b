#pragma once

#include <string>

namespace fleetwise {

/// Scans the costs of all sessions in the home folder with an empty cache, then again with the
/// cache file of that, and prints both times and the sums as one JSON object. `threads` 0 is all
/// cores. The cache file lies in a temporary folder. Exit status.
int benchCost(const std::string& home, unsigned threads);

}  // namespace fleetwise
