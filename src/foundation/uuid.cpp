#include "foundation/uuid.h"

#include <fmt/format.h>

#include <cstdint>
#include <random>

namespace fleetwise {

std::string randomUuid() {
    std::random_device random;
    const auto bits = [&](std::uint32_t mask) {
        return static_cast<std::uint32_t>(random()) & mask;
    };
    constexpr std::uint32_t version = 0x4000;
    constexpr std::uint32_t variant = 0x8000;
    return fmt::format("{:08x}-{:04x}-{:04x}-{:04x}-{:04x}{:08x}", bits(0xFFFFFFFF), bits(0xFFFF),
                       bits(0x0FFF) | version, bits(0x3FFF) | variant, bits(0xFFFF),
                       bits(0xFFFFFFFF));
}

}  // namespace fleetwise
