#include "cost/request_trail.h"

#include <algorithm>
#include <charconv>

namespace fleetwise {

namespace {

constexpr std::uint64_t prime = 0x100000001b3;
constexpr std::size_t digits = 8;

}  // namespace

void RequestTrail::add(std::string_view key) {
    for (const char byte : key)
        state = (state ^ static_cast<unsigned char>(byte)) * prime;
    // Where one key ends and the next begins must show.
    state = (state ^ 0x100) * prime;
    hashes.push_back(static_cast<std::uint32_t>(state ^ (state >> 32)));
}

std::size_t RequestTrail::commonPast(const RequestTrail& other) const {
    // Where one element agrees, all before it do.
    std::size_t same = 0;
    std::size_t end = std::min(size(), other.size());
    while (same < end) {
        const std::size_t middle = same + (end - same) / 2;
        if (hashes[middle] == other.hashes[middle]) {
            same = middle + 1;
        } else {
            end = middle;
        }
    }
    return same;
}

std::strong_ordering RequestTrail::operator<=>(const RequestTrail& other) const {
    const std::size_t same = commonPast(other);
    if (same == size() || same == other.size()) return size() <=> other.size();
    return hashes[same] <=> other.hashes[same];
}

std::string RequestTrail::text() const {
    constexpr std::string_view digit = "0123456789abcdef";
    std::string text;
    text.reserve(hashes.size() * digits);
    for (const std::uint32_t hash : hashes) {
        for (int shift = 28; shift >= 0; shift -= 4)
            text += digit[(hash >> shift) & 0xf];
    }
    return text;
}

std::optional<RequestTrail> RequestTrail::fromText(std::string_view text) {
    RequestTrail trail;
    if (text.size() % digits != 0) return {};
    trail.hashes.reserve(text.size() / digits);
    for (; !text.empty(); text.remove_prefix(digits)) {
        std::uint32_t hash = 0;
        const char* end = text.data() + digits;
        if (std::from_chars(text.data(), end, hash, 16).ptr != end) return {};
        trail.hashes.push_back(hash);
    }
    return trail;
}

}  // namespace fleetwise
