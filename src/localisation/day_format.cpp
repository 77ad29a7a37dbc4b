#include "localisation/day_format.h"

#include "foundation/date.h"
#include "localisation/localisation.h"

#include <fmt/format.h>

#include <array>

namespace fleetwise {

namespace {

constexpr std::array<std::string_view, 12> englishMonths{"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                                         "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};

bool isDay(std::string_view text) {
    constexpr std::size_t dayLength = std::string_view("2026-08-27").size();
    return text.size() == dayLength && parseInternetDate(fmt::format("{}T00:00:00Z", text));
}

std::size_t twoDigits(std::string_view text) {
    return static_cast<std::size_t>((text[0] - '0') * 10 + (text[1] - '0'));
}

}  // namespace

std::string dayText(std::string_view isoDay) {
    if (!isDay(isoDay)) return std::string(isoDay);
    const std::string_view year = isoDay.substr(0, 4);
    const std::string_view month = isoDay.substr(5, 2);
    const std::string_view day = isoDay.substr(8, 2);
    const std::string language = interfaceLanguageInUse();
    if (language == "en") {
        return fmt::format("{} {}, {}", englishMonths[twoDigits(month) - 1], twoDigits(day), year);
    }
    const char separator = language == "de" || language == "pl" ? '.' : '/';
    return fmt::format("{}{}{}{}{}", day, separator, month, separator, year);
}

std::string shortDayText(std::string_view isoDay) {
    if (!isDay(isoDay)) return std::string(isoDay);
    const std::string_view month = isoDay.substr(5, 2);
    const std::string_view day = isoDay.substr(8, 2);
    const std::string language = interfaceLanguageInUse();
    if (language == "en") {
        return fmt::format("{} {}", englishMonths[twoDigits(month) - 1], twoDigits(day));
    }
    if (language == "de") return fmt::format("{}.{}.", day, month);
    return fmt::format("{}{}{}", day, language == "pl" ? '.' : '/', month);
}

}  // namespace fleetwise
