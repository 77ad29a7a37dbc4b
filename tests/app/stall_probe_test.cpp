#include "app/stall_probe.h"

#include "foundation/virtual_main_loop.h"

#include <gtest/gtest.h>

namespace fleetwise::testing {
namespace {

TEST(StallProbe, seesAThreadThatIsReallyBlocked) {
    VirtualMainLoop loop{Date()};
    const StallProbe blocked = StallProbe::run(loop);
    EXPECT_TRUE(blocked.hasRecorded);
    EXPECT_TRUE(blocked.line.starts_with("blockiert: 3.5 s — aufgezeichnet: 1, zuletzt "))
        << blocked.line;

    const StallProbe free = StallProbe::run(loop, Seconds(0));
    EXPECT_FALSE(free.hasRecorded);
    EXPECT_EQ(free.line, "blockiert: 0.0 s — aufgezeichnet: keine");
}

}  // namespace
}  // namespace fleetwise::testing
