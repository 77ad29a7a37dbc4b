#pragma once

#include "foundation/date.h"
#include "foundation/main_loop.h"

#include <string>

namespace fleetwise {

/// Whether the stall watchdog notices a main thread that is really blocked.
struct StallProbe {
    std::string line;  ///< what is printed, in German
    bool hasRecorded = false;

    /// Blocks the calling thread, which has to be the one of `loop`, for `block` and asks a
    /// watchdog what it saw meanwhile. Writes no file.
    static StallProbe run(MainLoop& loop, Seconds block = Seconds(3.5));
};

}  // namespace fleetwise
