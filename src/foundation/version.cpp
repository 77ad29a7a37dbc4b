#include "foundation/version.h"

#include <algorithm>
#include <charconv>

namespace fleetwise {

namespace {

std::vector<std::string_view> partsBetweenDots(std::string_view text) {
    std::vector<std::string_view> parts;
    for (auto dot = text.find('.'); dot != std::string_view::npos; dot = text.find('.')) {
        parts.push_back(text.substr(0, dot));
        text.remove_prefix(dot + 1);
    }
    parts.push_back(text);
    return parts;
}

std::optional<std::uint32_t> asNumber(std::string_view digits) {
    std::uint32_t number = 0;
    const char* const behind = digits.data() + digits.size();
    const auto [end, error] = std::from_chars(digits.data(), behind, number);
    if (error != std::errc() || end != behind) return {};
    return number;
}

bool isWordCharacter(char character) {
    return (character >= '0' && character <= '9') || (character >= 'a' && character <= 'z') ||
           (character >= 'A' && character <= 'Z') || character == '-';
}

}  // namespace

std::optional<Version::Identifier> Version::identifier(std::string_view text) {
    if (text.empty() || !std::all_of(text.begin(), text.end(), isWordCharacter)) return {};
    if (const auto number = asNumber(text)) return *number;
    return std::string(text);
}

std::optional<Version> Version::parse(std::string_view text) {
    text = text.substr(0, text.find('+'));
    const auto hyphen = text.find('-');
    Version version;
    for (const std::string_view part : partsBetweenDots(text.substr(0, hyphen))) {
        const auto number = asNumber(part);
        if (!number) return {};
        version.numbers.push_back(*number);
    }
    while (!version.numbers.empty() && version.numbers.back() == 0)
        version.numbers.pop_back();
    if (hyphen == std::string_view::npos) return version;
    version.isReleased = false;
    for (const std::string_view part : partsBetweenDots(text.substr(hyphen + 1))) {
        auto next = identifier(part);
        if (!next) return {};
        version.early.push_back(*std::move(next));
    }
    return version;
}

}  // namespace fleetwise
