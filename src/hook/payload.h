#pragma once

#include <chrono>
#include <cstddef>
#include <span>

namespace fleetwise::hook {

/// Bytes that must follow what is parsed: a NUL, and what the parser may load with it.
inline constexpr std::size_t parserPadding = 32;

/// All of standard input.
class Payload {
public:
    static constexpr std::size_t sizeLimit = 256 << 20;

    /// Reads to the end. False where that takes longer than `patience`, fails, or is more than
    /// sizeLimit.
    bool read(std::chrono::seconds patience);

    /// parserPadding zero bytes follow it.
    std::span<char> bytes() const { return {data, size}; }

private:
    bool grow();

    char* data = nullptr;  // stays until the program ends
    std::size_t size = 0;
    std::size_t capacity = 0;
};

}  // namespace fleetwise::hook
