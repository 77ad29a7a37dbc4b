#pragma once

#include "cost/session_cost.h"
#include "foundation/date.h"

#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>
#include <vector>

namespace fleetwise {

/// A request of a session's own file, by which copies of it are recognised.
struct RequestMark {
    std::uint64_t key = 0;  ///< the hash of what names it
    Date at;                ///< 1970-01-01 where nothing tells

    bool operator==(const RequestMark&) const = default;
};

/// For readers that can be told to stop behind a number of requests.
inline constexpr std::size_t allRequests = std::numeric_limits<std::size_t>::max();

/// What the files of one session told.
struct SessionUsage {
    SessionCost cost;
    std::string firstKey;               ///< of the first request; empty where it has none
    std::vector<RequestMark> requests;  ///< of the session's own file, in order
};

}  // namespace fleetwise
