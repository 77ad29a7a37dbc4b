#pragma once

#include "foundation/saturating.h"

#include <cstdint>

namespace fleetwise {

/// Tokens by what is paid for them. Sums stay at the 64-bit limits instead of overflowing.
struct TokenTally {
    std::int64_t input = 0;              ///< read neither from nor into the prompt cache
    std::int64_t output = 0;             ///< thinking included
    std::int64_t thinking = 0;           ///< a part of `output`, never priced by itself
    std::int64_t cacheRead = 0;          ///< read from the prompt cache
    std::int64_t cacheWrite5m = 0;       ///< written to it, to be kept for five minutes
    std::int64_t cacheWrite1h = 0;       ///< written to it, to be kept for an hour
    std::int64_t cacheWriteUnknown = 0;  ///< written to it, nobody says for how long

    bool operator==(const TokenTally&) const = default;

    std::int64_t cacheWrites() const {
        return saturatingSum(saturatingSum(cacheWrite5m, cacheWrite1h), cacheWriteUnknown);
    }

    /// All tokens; `thinking` is counted within `output`.
    std::int64_t all() const {
        const std::int64_t fresh = saturatingSum(input, output);
        return saturatingSum(saturatingSum(cacheWrites(), fresh), cacheRead);
    }

    /// This and `other` field by field.
    template <typename Operation>
    TokenTally combined(const TokenTally& other, Operation&& operation) const {
        return {.input = operation(input, other.input),
                .output = operation(output, other.output),
                .thinking = operation(thinking, other.thinking),
                .cacheRead = operation(cacheRead, other.cacheRead),
                .cacheWrite5m = operation(cacheWrite5m, other.cacheWrite5m),
                .cacheWrite1h = operation(cacheWrite1h, other.cacheWrite1h),
                .cacheWriteUnknown = operation(cacheWriteUnknown, other.cacheWriteUnknown)};
    }
};

inline TokenTally operator+(const TokenTally& left, const TokenTally& right) {
    return left.combined(right, saturatingSum);
}

inline TokenTally& operator+=(TokenTally& sum, const TokenTally& more) {
    return sum = sum + more;
}

/// Without `part`, which is contained in `whole`.
inline TokenTally operator-(const TokenTally& whole, const TokenTally& part) {
    return whole.combined(part, saturatingDifference);
}

}  // namespace fleetwise
