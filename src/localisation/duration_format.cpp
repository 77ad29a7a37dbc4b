#include "localisation/duration_format.h"

#include "localisation/localisation.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdint>

namespace fleetwise {

namespace {

std::string twoUnits(Text larger, std::int64_t largerCount, Text smaller,
                     std::int64_t smallerCount) {
    const std::string text = localisedFormat(larger, largerCount);
    if (smallerCount == 0) return text;
    return fmt::format("{} {}", text, localisedFormat(smaller, smallerCount));
}

/// 0 for a negative length and for "not a number".
std::int64_t wholeSeconds(Seconds duration) {
    constexpr double longest = 1e15;
    if (!(duration.count() > 0)) return 0;
    return static_cast<std::int64_t>(std::min(duration.count(), longest));
}

}  // namespace

std::string durationText(Seconds duration) {
    const std::int64_t seconds = wholeSeconds(duration);
    const std::int64_t minutes = seconds / 60;
    const std::int64_t hours = minutes / 60;
    const std::int64_t days = hours / 24;
    if (days > 0) return twoUnits("%d T"_text, days, "%d h"_text, hours % 24);
    if (hours > 0) return twoUnits("%d h"_text, hours, "%d min"_text, minutes % 60);
    if (minutes > 0) return localisedFormat("%d min"_text, minutes);
    return localisedFormat("%d s"_text, seconds);
}

}  // namespace fleetwise
