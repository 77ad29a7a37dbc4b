#pragma once

#include "hook/parser_padding.h"

#include <chrono>
#include <cstddef>
#include <span>

namespace fleetwise::hook {

/// All of standard input.
class Payload {
public:
    static constexpr std::size_t sizeLimit = 256 << 20;

    Payload() = default;
    Payload(const Payload&) = delete;
    Payload& operator=(const Payload&) = delete;
    ~Payload();

    /// Reads to the end, or what comes within `patience`. False where that fails or is more than
    /// sizeLimit.
    bool read(std::chrono::seconds patience);

    /// parserPadding zero bytes follow it.
    std::span<char> bytes() const { return {data, size}; }

private:
    bool grow();

    char* data = nullptr;
    std::size_t size = 0;
    std::size_t capacity = 0;
};

}  // namespace fleetwise::hook
