#pragma once

#include "usage/usage_sample.h"

#include <initializer_list>
#include <optional>
#include <string>

namespace fleetwise::testing {

inline constexpr double minute = 60;
inline constexpr double hour = 3600;
inline constexpr double day = 86'400;

/// A Sunday, 12:00 UTC.
inline const Date noon = dateFromSeconds(1'795'348'800);

inline Date at(double seconds) {
    return noon + Seconds(seconds);
}

inline std::optional<double> fromNoon(const std::optional<Date>& date) {
    return date ? std::optional((*date - noon).count()) : std::nullopt;
}

/// Values at seconds from noon.
inline QuotaValues values(std::initializer_list<std::pair<double, int>> points) {
    QuotaValues made;
    for (const auto& [seconds, percent] : points)
        made.emplace_back(at(seconds), percent);
    return made;
}

inline UsageSample sample(Date date, std::optional<int> fiveHour, std::optional<int> sevenDay = {},
                          std::optional<std::string> org = {}) {
    return {.date = date,
            .fiveHour = fiveHour,
            .sevenDay = sevenDay,
            .org = std::move(org),
            .extraUsage = {}};
}

/// Samples of one account whose five-hour (or seven-day) values these are.
inline UsageSamples samplesOf(const QuotaValues& from, bool isSevenDay = false) {
    UsageSamples made;
    for (const auto& [date, percent] : from)
        made.push_back(isSevenDay ? sample(date, {}, percent) : sample(date, percent));
    return made;
}

}  // namespace fleetwise::testing
