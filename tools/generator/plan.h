#pragma once

#include "foundation/date.h"

#include <cstdint>

namespace fleetwise::generator {

/// What a home folder is to hold. The same plan for the same folder gives the same files, byte for
/// byte. Negative numbers count as 0.
struct Plan {
    int sessions = 300;     ///< Claude Code sessions, live ones included
    double megabytes = 50;  ///< all transcripts together, in 10^6 bytes; each has a few kB at least
    int live = 20;          ///< sessions with a registry entry; never more than `sessions`
    int desktop = 0;        ///< how many of `sessions` the desktop app has, live ones and ended
    int rollouts = 0;       ///< Codex rollouts that a user began
    int subagentRollouts = 0;    ///< their sub-agents', in turns; none where there are no rollouts
    int forkedRollouts = 0;      ///< forks of them, likewise
    int compressedRollouts = 0;  ///< old rollouts that cannot be read, since they are compressed
    int forkedSessions = 0;   ///< forks of Claude Code sessions, beyond `sessions` and `megabytes`
    int projects = 12;        ///< working directories the sessions are spread over; at least one
    double days = 20.0 / 24;  ///< how far back ended sessions and rollouts reach
    double usageDays = 0;     ///< how far back the desktop app's usage history reaches; 0: none
    int accounts = 1;         ///< that it measures; at least one
    std::uint64_t seed = 1;
    std::int32_t pid = 1;  ///< the process every live session claims; process 1 always exists
    Date now = currentDate();
};

}  // namespace fleetwise::generator
