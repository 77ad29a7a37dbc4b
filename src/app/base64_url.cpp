#include "app/base64_url.h"

#include <cstdint>

namespace fleetwise {

namespace {

constexpr std::string_view alphabet =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-_";

/// Without the padding; nothing where what pads the text does not fill its last group of four.
std::optional<std::string_view> withoutPadding(std::string_view text) {
    const std::size_t length = text.find_last_not_of('=') + 1;
    const std::size_t padding = text.size() - length;
    if (padding > 2 || (padding > 0 && text.size() % 4 != 0)) return {};
    return text.substr(0, length);
}

}  // namespace

std::optional<std::string> decodeBase64Url(std::string_view text) {
    const auto digits = withoutPadding(text);
    if (!digits || digits->size() % 4 == 1) return {};
    std::string bytes;
    std::uint32_t pending = 0;
    unsigned pendingBits = 0;
    for (const char digit : *digits) {
        const std::size_t value = alphabet.find(digit);
        if (value == std::string_view::npos) return {};
        pending = pending << 6 | static_cast<std::uint32_t>(value);
        pendingBits += 6;
        if (pendingBits < 8) continue;
        pendingBits -= 8;
        bytes += static_cast<char>(pending >> pendingBits & 0xFF);
        pending &= (1U << pendingBits) - 1;
    }
    if (pending != 0) return {};
    return bytes;
}

}  // namespace fleetwise
