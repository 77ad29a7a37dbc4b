#pragma once

#include <cstdint>
#include <limits>

namespace fleetwise {

/// The sum, held at the smallest or largest 64-bit value instead of overflowing.
constexpr std::int64_t saturatingSum(std::int64_t left, std::int64_t right) {
    std::int64_t sum = 0;
    if (!__builtin_add_overflow(left, right, &sum)) return sum;
    return right < 0 ? std::numeric_limits<std::int64_t>::min()
                     : std::numeric_limits<std::int64_t>::max();
}

/// The difference, held likewise.
constexpr std::int64_t saturatingDifference(std::int64_t left, std::int64_t right) {
    std::int64_t difference = 0;
    if (!__builtin_sub_overflow(left, right, &difference)) return difference;
    return right > 0 ? std::numeric_limits<std::int64_t>::min()
                     : std::numeric_limits<std::int64_t>::max();
}

}  // namespace fleetwise
