#pragma once

#include "generator/books.h"

#include <array>
#include <string_view>

namespace fleetwise::generator {

/// A model and what its maker bills, in US dollars per million tokens.
struct AgentModel {
    std::string_view name;
    double input;
    double output;
    double cacheRead;
    double cacheWrite5m;
    double cacheWrite1h;

    double billed(const Usage& usage) const {
        return (static_cast<double>(usage.input) * input +
                static_cast<double>(usage.output) * output +
                static_cast<double>(usage.cacheRead) * cacheRead +
                static_cast<double>(usage.cacheWrite5m) * cacheWrite5m +
                static_cast<double>(usage.cacheWrite1h) * cacheWrite1h) /
               1e6;
    }
};

inline constexpr std::array agentModels{
    AgentModel{"claude-opus-5-5", 5, 25, 0.5, 6.25, 10},
    AgentModel{"claude-haiku-4-5", 1, 5, 0.1, 1.25, 2},
};

}  // namespace fleetwise::generator
