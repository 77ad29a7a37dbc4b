#pragma once

#include <cstdint>
#include <random>
#include <string>

namespace fleetwise::generator {

/// Numbers that are the same for one seed on every machine and library: the standard's engine is
/// fixed, its distributions are not, so none is used. Callers draw one number per expression,
/// since the order in which arguments are evaluated differs between compilers.
class Random {
public:
    explicit Random(std::uint64_t seed) : engine(seed) {}

    /// From 0 to `count` − 1; `count` is at least 1. The bias of the modulo does not matter here.
    std::uint64_t below(std::uint64_t count) { return engine() % count; }

    /// From `lowest` to `highest`, both included; `lowest` is not above `highest`.
    std::int64_t between(std::int64_t lowest, std::int64_t highest) {
        return lowest +
               static_cast<std::int64_t>(below(static_cast<std::uint64_t>(highest - lowest) + 1));
    }

    bool chance(unsigned percent) { return below(100) < percent; }

    /// From 0 up to, not including, 1.
    double fraction() { return static_cast<double>(engine() >> 11) / 9007199254740992.0; }

    /// `digits` lower-case hexadecimal digits, at most 16.
    std::string hexadecimal(int digits);

    /// A random UUID (version 4) in lower case.
    std::string uuid();

    template <typename Range>
    const auto& pick(const Range& range) {
        return range[below(std::size(range))];
    }

private:
    std::mt19937_64 engine;
};

}  // namespace fleetwise::generator
