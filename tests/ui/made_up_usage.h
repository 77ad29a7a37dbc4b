#pragma once

#include "foundation/date.h"
#include "usage/usage_overview.h"

#include <string>

namespace fleetwise::testing {

/// A window as it was measured at `now`, which ends after `left`.
inline QuotaWindow quotaWindow(int percent, Seconds left, Date now) {
    QuotaWindow window;
    window.title = "Fenster";
    window.percent = percent;
    window.windowEndsAt = now + left;
    window.measuredAt = now;
    return window;
}

/// Both windows of one account: 42 % with 110 minutes to go, and 17 % with three days.
inline UsageOverview usageOfOneAccount(Date now) {
    UsageOverview usage;
    usage.at = now;
    usage.source = UsageOverview::Source::desktopApp;
    usage.fiveHour = quotaWindow(42, Seconds(6600), now);
    usage.fiveHour->projection = QuotaWindow::Projection{.percent = 66, .exhaustedAt = {}};
    usage.fiveHour->ratePerHour = 8.5;
    usage.sevenDay = quotaWindow(17, Seconds(3 * 86'400), now);
    return usage;
}

}  // namespace fleetwise::testing
