#include "localisation/number_input.h"

#include <algorithm>
#include <array>
#include <limits>
#include <string>

namespace fleetwise {

namespace {

constexpr std::size_t groupSize = 3;

/// No-break, thin and narrow no-break space, and the typographic apostrophe.
constexpr std::array<std::string_view, 4> otherSeparators{"\u00A0", "\u2009", "\u202F", "\u2019"};

bool isDigit(char character) {
    return character >= '0' && character <= '9';
}

/// With every sign that separates groups in no language's decimals as a plain space.
std::string withPlainSpaces(std::string_view text) {
    std::string plain;
    while (!text.empty()) {
        const auto found = std::ranges::find_if(
            otherSeparators, [&](std::string_view sign) { return text.starts_with(sign); });
        const bool isOther = found != otherSeparators.end();
        const bool isPlain = text.front() == '\'' || text.front() == '\t';
        plain += isOther || isPlain ? ' ' : text.front();
        text.remove_prefix(isOther ? found->size() : 1);
    }
    const auto first = plain.find_first_not_of(' ');
    if (first == std::string::npos) return {};
    return plain.substr(first, plain.find_last_not_of(' ') - first + 1);
}

/// The digits of the whole part without its separators; empty where the groups do not fit.
std::string ungrouped(std::string_view whole, char separator) {
    if (std::ranges::all_of(whole, isDigit)) return std::string(whole);
    std::string digits;
    bool isFirst = true;
    while (true) {
        const auto end = whole.find(separator);
        const std::string_view group = whole.substr(0, end);
        const bool fits = isFirst ? !group.empty() && group.size() <= groupSize && group != "0"
                                  : group.size() == groupSize;
        if (!fits || !std::ranges::all_of(group, isDigit)) return {};
        digits += group;
        if (end == std::string_view::npos) return digits;
        whole.remove_prefix(end + 1);
        isFirst = false;
    }
}

/// The whole part's digits; empty where it is not one in any form that the language has.
std::string wholeDigits(std::string_view whole, std::string_view language) {
    const bool isSpaced = whole.find(' ') != std::string_view::npos;
    return ungrouped(whole, isSpaced ? ' ' : language == "en" ? ',' : '.');
}

tl::expected<std::int64_t, NumberFault> scaled(std::string_view digits) {
    constexpr std::int64_t most = std::numeric_limits<std::int64_t>::max();
    std::int64_t value = 0;
    for (const char character : digits) {
        const std::int64_t digit = character - '0';
        if (value > (most - digit) / 10) return tl::unexpected(NumberFault::tooLarge);
        value = value * 10 + digit;
    }
    return value;
}

}  // namespace

tl::expected<std::int64_t, NumberFault> parseNumber(std::string_view text, int decimals,
                                                    std::string_view language) {
    const std::string plain = withPlainSpaces(text);
    std::size_t separator = plain.find(language == "en" ? '.' : ',');
    // Without one of the language's own, the point of programs.
    if (separator == std::string::npos && wholeDigits(plain, language).empty()) {
        separator = plain.find('.');
    }
    const bool hasFraction = separator != std::string::npos;
    const std::string_view whole = std::string_view(plain).substr(0, separator);
    const std::string fraction = hasFraction ? plain.substr(separator + 1) : "";
    std::string digits = whole.empty() && hasFraction ? "0" : wholeDigits(whole, language);
    if (digits.empty() || (hasFraction && fraction.empty()) ||
        !std::ranges::all_of(fraction, isDigit)) {
        return tl::unexpected(NumberFault::notANumber);
    }
    const auto most = static_cast<std::size_t>(decimals);
    if (fraction.size() > most) return tl::unexpected(NumberFault::tooPrecise);
    digits += fraction + std::string(most - fraction.size(), '0');
    return scaled(digits);
}

}  // namespace fleetwise
