#include "foundation/web_address.h"

#include "foundation/text.h"

#include <arpa/inet.h>

#include <algorithm>
#include <charconv>
#include <cstdint>

namespace fleetwise {

namespace {

constexpr bool isLetter(char character) {
    return (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z');
}

constexpr bool isDigit(char character) {
    return character >= '0' && character <= '9';
}

bool isScheme(std::string_view text) {
    return !text.empty() && isLetter(text.front()) && std::ranges::all_of(text, [](char each) {
        return isLetter(each) || isDigit(each) || each == '+' || each == '-' || each == '.';
    });
}

/// Letters of other alphabets are left to whoever looks the name up.
bool isHostName(std::string_view text) {
    return !text.empty() && std::ranges::all_of(text, [](char each) {
        return isLetter(each) || isDigit(each) || each == '-' || each == '.' || each == '_' ||
               static_cast<unsigned char>(each) >= 0x80;
    });
}

bool isSixthVersionAddress(const std::string& text) {
    ::in6_addr address{};
    return ::inet_pton(AF_INET6, text.c_str(), &address) == 1;
}

/// What stands between the host and the path.
bool isPortOrNothing(std::string_view text) {
    if (text.empty()) return true;
    if (!text.starts_with(':')) return false;
    std::uint16_t port = 0;
    const char* const end = text.data() + text.size();
    const auto [stopped, error] = std::from_chars(text.data() + 1, end, port);
    return error == std::errc() && stopped == end && port != 0;
}

}  // namespace

std::optional<WebAddress> WebAddress::parse(std::string_view text) {
    constexpr std::string_view separator = "://";
    if (printable(text) != text || text.find_first_of(" \\") != std::string_view::npos) return {};
    const auto schemeEnd = text.find(separator);
    if (schemeEnd == std::string_view::npos || !isScheme(text.substr(0, schemeEnd))) return {};
    std::string_view authority = text.substr(schemeEnd + separator.size());
    authority = authority.substr(0, authority.find_first_of("/?#"));
    authority.remove_prefix(authority.rfind('@') + 1);

    const bool isBracketed = authority.starts_with('[');
    const auto hostEnd = std::min(authority.find(isBracketed ? ']' : ':'), authority.size());
    const std::string host = asciiLowercased(authority.substr(0, hostEnd).substr(isBracketed));
    const std::string_view port =
        authority.substr(hostEnd).substr(isBracketed && hostEnd < authority.size() ? 1 : 0);
    if (isBracketed ? !isSixthVersionAddress(host) : !isHostName(host)) return {};
    if ((isBracketed && hostEnd == authority.size()) || !isPortOrNothing(port)) return {};
    return WebAddress{asciiLowercased(text.substr(0, schemeEnd)), host};
}

}  // namespace fleetwise
