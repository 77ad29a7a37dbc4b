#include "app/stall_probe.h"

#include "reactions/stall_watchdog.h"

#include <fmt/format.h>

#include <thread>

namespace fleetwise {

StallProbe StallProbe::run(MainLoop& loop, Seconds block) {
    StallWatchdog watchdog("",
                           [&loop](std::function<void()> action) { loop.post(std::move(action)); });
    watchdog.start();
    std::this_thread::sleep_for(block);
    const std::vector<Stall> stalls = watchdog.stalls();
    StallProbe probe{.line = fmt::format("blockiert: {:.1f} s — aufgezeichnet: ", block.count()),
                     .hasRecorded = !stalls.empty()};
    probe.line += stalls.empty() ? "keine"
                                 : fmt::format("{}, zuletzt {:.1f} s", stalls.size(),
                                               stalls.back().seconds.count());
    return probe;
}

}  // namespace fleetwise
