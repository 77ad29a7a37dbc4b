#pragma once

#include "foundation/date.h"

#include <optional>

namespace fleetwise {

/// Figures dated later than this after the clock are of the future and do not count.
inline constexpr Seconds clockTolerance{60};

/// How far the server's clock may be ahead of ours, in the moments that it tells.
inline constexpr Seconds serverTolerance{600};

inline bool isOfFuture(Date date, Date now) {
    return date > now + clockTolerance;
}

/// The moment, in seconds since 1970; nothing outside the years 2000 to 2099, which other programs'
/// files hold only by mistake.
inline std::optional<Date> plausibleDate(double seconds) {
    constexpr double year2000 = 946'684'800;
    constexpr double year2100 = 4'102'444'800;
    const bool isPlausible = seconds >= year2000 && seconds < year2100;
    return isPlausible ? std::optional(dateFromSeconds(seconds)) : std::nullopt;
}

inline std::optional<Date> plausibleDate(std::optional<Date> date) {
    return date ? plausibleDate(secondsSince1970(*date)) : std::nullopt;
}

}  // namespace fleetwise
