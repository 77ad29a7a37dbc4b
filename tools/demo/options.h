#pragma once

#include <unistd.h>

#include <cstdint>
#include <limits>
#include <optional>
#include <string>

namespace fleetwise::demo {

/// What the demo was asked for on its command line.
struct Options {
    double rate = 2;  ///< events per second; 0: as fast as possible
    double seconds = std::numeric_limits<double>::infinity();
    double events = std::numeric_limits<double>::infinity();
    std::uint64_t seed = 1;
    std::int32_t pid = ::getpid();  ///< the process that running sessions claim
    bool isKept = false;
    bool startsApplication = true;
    std::string home;  ///< empty: a temporary one
};

/// Nothing for what is not understood.
std::optional<Options> readOptions(int count, char** arguments);

}  // namespace fleetwise::demo
