#pragma once

#include "generator/plan.h"
#include "generator/random.h"

#include <algorithm>
#include <cmath>

namespace fleetwise::generator {

/// Between `least` and `most` seconds before the plan's present.
inline Date secondsAgo(const Plan& plan, Random& random, std::int64_t least, std::int64_t most) {
    return plan.now - Seconds(static_cast<double>(random.between(least, most)));
}

/// Between three minutes ago and as far back as the plan reaches.
inline Date someTimeAgo(const Plan& plan, Random& random) {
    const double reach = std::max(plan.days * 86'400 - 180, 0.0);
    return plan.now - Seconds(180 + std::floor(reach * random.fraction()));
}

}  // namespace fleetwise::generator
