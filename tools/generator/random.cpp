#include "generator/random.h"

#include <fmt/format.h>

namespace fleetwise::generator {

std::string Random::hexadecimal(int digits) {
    return fmt::format("{:016x}", engine()).substr(0, static_cast<std::size_t>(digits));
}

std::string Random::uuid() {
    const std::uint64_t high = engine();
    const std::uint64_t low = engine();
    return fmt::format("{:08x}-{:04x}-4{:03x}-{:x}{:03x}-{:012x}", high >> 32, high >> 16 & 0xffff,
                       high & 0xfff, 8 | (low >> 62), low >> 48 & 0xfff, low & 0xffffffffffff);
}

}  // namespace fleetwise::generator
