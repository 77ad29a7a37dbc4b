#pragma once

#include "foundation/date.h"

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace fleetwise {

/// One measuring point of an account's quota.
struct UsageSample {
    Date date;
    std::optional<int> fiveHour;       ///< percent used of the five-hour window, 0 … 10000
    std::optional<int> sevenDay;       ///< percent used of the seven-day window, 0 … 10000
    std::optional<std::string> org;    ///< the organisation (account) that was measured
    std::optional<double> extraUsage;  ///< pay-as-you-go usage, as the writer gives it

    bool operator==(const UsageSample&) const = default;
};

using UsageSamples = std::vector<UsageSample>;  ///< ascending by date

/// The measured percentages of one window, ascending by date.
using QuotaValues = std::vector<std::pair<Date, int>>;

}  // namespace fleetwise
