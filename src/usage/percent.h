#pragma once

#include <algorithm>
#include <cmath>

namespace fleetwise {

/// A told percentage as a whole one, 0 … 10000, halves away from zero. The bound lies far above 100
/// since quotas can be exceeded.
inline int clampedPercent(double percent) {
    return std::isnan(percent) ? 0
                               : static_cast<int>(std::round(std::clamp(percent, 0.0, 10'000.0)));
}

}  // namespace fleetwise
