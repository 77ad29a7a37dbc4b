#pragma once

#include "foundation/date.h"

#include <optional>
#include <string>

namespace fleetwise {

inline constexpr Seconds fiveHours{18'000};
inline constexpr Seconds sevenDays{604'800};

/// By how many percent points a figure must fall for that to be a reset, not a correction.
inline constexpr int leastResetDrop = 10;

/// One quota window as it stands at a moment. Percentages are of the quota; over 100 is possible.
struct QuotaWindow {
    struct Projection {
        int percent = 0;                  ///< at the window's end; may exceed 100
        std::optional<Date> exhaustedAt;  ///< when 100 % is reached, where that is exceeded

        bool operator==(const Projection&) const = default;
    };

    struct DailyBudget {
        double perDay = 0;  ///< percent points for each remaining day
        int usedToday = 0;  ///< percent points since local midnight

        bool operator==(const DailyBudget&) const = default;
    };

    std::string title;                  ///< "5-Stunden-Fenster" in the interface language
    int percent = 0;                    ///< the latest value
    std::optional<double> ratePerHour;  ///< percent points per hour over the last hour, above 0
    int peak = 0;                       ///< the highest percent of the window measured last
    std::optional<int> dayDelta;        ///< change against 24 hours earlier
    std::optional<Date> resetsAt;       ///< the next reset: windowEndsAt
    std::optional<Projection> projection;
    std::optional<Date> saturatesAt;     ///< when it is full at the present rate, within the window
    std::optional<Date> windowStartsAt;  ///< of the current window, where it is known
    std::optional<Date> windowEndsAt;
    std::optional<DailyBudget> dailyBudget;  ///< of windows of several days only
    Date measuredAt;
    bool isStale = false;  ///< measured too long ago to be relied on

    bool operator==(const QuotaWindow&) const = default;
};

}  // namespace fleetwise
