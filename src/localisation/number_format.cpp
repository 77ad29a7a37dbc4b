#include "localisation/number_format.h"

#include "localisation/localisation.h"

#include <string_view>

namespace fleetwise {

namespace {

std::string_view thousandsSeparator(std::string_view language) {
    if (language == "en") return ",";
    if (language == "fr") return "\u202F";
    if (language == "pl") return "\u00A0";
    return ".";
}

}  // namespace

std::string groupedNumber(std::int64_t number) {
    constexpr std::size_t groupSize = 3;
    const std::string language = interfaceLanguageInUse();
    std::string digits = std::to_string(number);
    const std::size_t firstDigit = number < 0 ? 1 : 0;
    for (std::size_t position = digits.size(); position > firstDigit + groupSize;) {
        position -= groupSize;
        digits.insert(position, thousandsSeparator(language));
    }
    return digits;
}

}  // namespace fleetwise
