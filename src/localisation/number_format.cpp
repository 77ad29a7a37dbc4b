#include "localisation/number_format.h"

#include "localisation/localisation.h"

#include <fmt/format.h>

#include <array>
#include <cstdlib>
#include <string_view>

namespace fleetwise {

namespace {

std::string_view thousandsSeparator(std::string_view language) {
    if (language == "en") return ",";
    if (language == "fr") return "\u202F";
    if (language == "pl") return "\u00A0";
    return ".";
}

/// From how many digits on the separator stands (Unicode CLDR, minimumGroupingDigits).
std::size_t fewestGroupedDigits(std::string_view language) {
    return language == "es" || language == "pl" ? 5 : 4;
}

}  // namespace

std::string groupedNumber(std::int64_t number) {
    constexpr std::size_t groupSize = 3;
    const std::string language = interfaceLanguageInUse();
    std::string digits = std::to_string(number);
    const std::size_t firstDigit = number < 0 ? 1 : 0;
    if (digits.size() < firstDigit + fewestGroupedDigits(language)) return digits;
    for (std::size_t position = digits.size(); position > firstDigit + groupSize;) {
        position -= groupSize;
        digits.insert(position, thousandsSeparator(language));
    }
    return digits;
}

std::string fixedNumber(std::int64_t units, int decimals) {
    std::int64_t scale = 1;
    for (int digit = 0; digit < decimals; ++digit)
        scale *= 10;
    const std::int64_t fraction = std::abs(units % scale);
    const std::string_view separator = interfaceLanguageInUse() == "en" ? "." : ",";
    const std::string_view sign = units < 0 && units > -scale ? "-" : "";
    return fmt::format("{}{}{}{:0{}}", sign, groupedNumber(units / scale), separator, fraction,
                       decimals);
}

std::string shortNumber(std::int64_t count) {
    constexpr std::int64_t thousand = 1'000;
    constexpr std::int64_t hundred = 100;
    if (count < thousand) return std::to_string(count);
    constexpr std::array units{"%@ Tsd."_text, "%@ Mio."_text, "%@ Mrd."_text, "%@ Bio."_text};
    std::size_t unit = 0;
    // What would round up to 1000 of a unit is 1 of the next.
    while (unit + 1 < units.size() && count >= thousand * thousand - thousand / 2) {
        count = count / thousand + (count % thousand >= thousand / 2 ? 1 : 0);
        ++unit;
    }
    const std::int64_t tenths = (count + hundred / 2) / hundred;
    const bool isWhole = tenths % 10 == 0 || tenths >= thousand;
    return localisedFormat(units.at(unit), isWhole
                                               ? groupedNumber((count + thousand / 2) / thousand)
                                               : fixedNumber(tenths, 1));
}

std::string byteCountText(std::uint64_t bytes) {
    constexpr std::uint64_t megabyte = 1'000'000;
    if (bytes < megabyte) return localised("< 1 MB"_text);
    const std::uint64_t megabytes = bytes / megabyte + (bytes % megabyte >= megabyte / 2 ? 1 : 0);
    if (megabytes < 1'000) return localisedFormat("%@ MB"_text, std::to_string(megabytes));
    const auto tenthsOfGigabytes = static_cast<std::int64_t>((megabytes + 50) / 100);
    return localisedFormat("%@ GB"_text, fixedNumber(tenthsOfGigabytes, 1));
}

}  // namespace fleetwise
