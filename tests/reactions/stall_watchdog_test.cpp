#include "reactions/stall_watchdog.h"

#include "support/temporary_directory.h"

#include <gtest/gtest.h>

#include <atomic>
#include <future>

namespace fleetwise::testing {
namespace {

using namespace std::chrono_literals;
using Moment = StallDetector::Moment;
using SaveTime = StallDetector::SaveTime;
using Continuation = StallDetector::Continuation;

const Date start = dateFromSeconds(1'795'226'729);

/// A moment after `time` on all clocks, of which the process computed a tenth.
Moment after(Seconds time, Seconds wallJump = 0s) {
    return {.monotonic = 100s + time, .wall = start + time + wallJump, .cpu = 5s + time / 10};
}

TEST(StallDetector, countsAWaitOfTwoSeconds) {
    const struct {
        const char* name;
        Seconds waited;
        Seconds wallJump;
        std::size_t stalls;
    } rows[] = {
        {"at once", 0s, 0s, 0},
        {"just below", 1990ms, 0s, 0},
        {"exactly", 2s, 0s, 1},
        {"the wall clock jumps ahead", 1s, 3600s, 0},
        {"the wall clock jumps back", 3s, -3600s, 1},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        StallDetector detector({});
        EXPECT_TRUE(detector.ping(after(0s), 7));
        detector.answer(after(row.waited, row.wallJump), 7);
        ASSERT_EQ(detector.stalls().size(), row.stalls);
        if (row.stalls == 0) continue;
        EXPECT_EQ(detector.stalls()[0].at, start);
        EXPECT_EQ(detector.stalls()[0].seconds, row.waited);
        EXPECT_EQ(detector.stalls()[0].sessions, 7);
        EXPECT_NEAR(detector.stalls()[0].cpu->count(), row.waited.count() / 10, 1e-9);
    }
}

TEST(StallDetector, keepsOneGrowingEntryUntilATimelyAnswer) {
    StallDetector detector({});
    const auto lengths = [&] {
        std::vector<double> seconds;
        for (const Stall& stall : detector.stalls())
            seconds.push_back(stall.seconds.count());
        return seconds;
    };
    using Lengths = std::vector<double>;
    EXPECT_TRUE(detector.ping(after(0s), 1));
    EXPECT_FALSE(detector.ping(after(1s), 1));
    EXPECT_EQ(lengths(), Lengths());
    EXPECT_FALSE(detector.ping(after(2s), 4));
    EXPECT_EQ(lengths(), Lengths({2})) << "recorded before any answer";
    EXPECT_FALSE(detector.ping(after(3s), 3));
    detector.answer(after(3500ms), 3);
    EXPECT_EQ(lengths(), Lengths({3.5}));

    EXPECT_TRUE(detector.ping(after(4s), 3));
    detector.answer(after(6500ms), 3);
    EXPECT_EQ(lengths(), Lengths({6.5})) << "the next ping was late as well";
    EXPECT_EQ(detector.stalls()[0].at, start);
    EXPECT_EQ(detector.stalls()[0].sessions, 4) << "the most there were";

    EXPECT_TRUE(detector.ping(after(7s), 3));
    detector.answer(after(7100ms), 3);
    EXPECT_TRUE(detector.ping(after(8s), 3));
    detector.answer(after(10s), 3);
    EXPECT_EQ(lengths(), Lengths({6.5, 2})) << "a new one after a timely answer";
    EXPECT_EQ(detector.stalls()[1].at, start + 8s);
}

TEST(StallDetector, leavesStoredStallsAlone) {
    const Stall stored{.at = start - 1h, .seconds = 9s, .sessions = 2, .cpu = {}};
    StallDetector detector({stored});
    detector.ping(after(0s), 1);
    detector.answer(after(2s), 1);
    ASSERT_EQ(detector.stalls().size(), 2U);
    EXPECT_EQ(detector.stalls()[0], stored);
}

TEST(StallDetector, mergesAndDropsTheOldest) {
    std::vector<Stall> stalls =
        StallDetector::merge({}, {.at = start, .seconds = 3s, .cpu = {}}, Continuation::ongoing);
    EXPECT_EQ(stalls.size(), 1U) << "nothing there to grow";
    for (int index = 1; index <= 20; ++index) {
        stalls = StallDetector::merge(std::move(stalls),
                                      {.at = start + index * 1min, .seconds = 3s, .cpu = {}},
                                      Continuation::newStall);
    }
    ASSERT_EQ(stalls.size(), 20U);
    EXPECT_EQ(stalls.front().at, start + 1min);
    EXPECT_EQ(stalls.back().at, start + 20min);
}

TEST(StallDetector, isSavedOnceAMinuteAndAtTheEnd) {
    StallDetector detector({});
    const auto stallUntil = [&](Seconds time) {
        detector.ping(after(time - 2s), 1);
        detector.answer(after(time), 1);
    };
    const auto isTaken = [&](Seconds time, SaveTime when = SaveTime::whenDue) {
        return detector.takeSave(after(time).monotonic, when);
    };
    EXPECT_FALSE(isTaken(0s, SaveTime::atTheEnd)) << "nothing to save";
    stallUntil(10s);
    EXPECT_TRUE(isTaken(10s));
    stallUntil(20s);
    EXPECT_FALSE(isTaken(69s));
    EXPECT_TRUE(isTaken(70s)) << "what had to wait is saved later";
    EXPECT_FALSE(isTaken(200s));
    stallUntil(80s);
    EXPECT_TRUE(isTaken(81s, SaveTime::atTheEnd));
    detector.saveFailed();
    EXPECT_FALSE(isTaken(82s));
    EXPECT_TRUE(isTaken(141s)) << "after a failure";
}

/// A main thread that runs its first ping when it is told to.
class MainThread {
public:
    StallWatchdog::Post post() {
        return [this](std::function<void()> action) {
            if (!isTaken) posted.set_value(std::move(action));
            isTaken = true;
        };
    }
    std::function<void()> firstPing() { return posted.get_future().get(); }

private:
    std::promise<std::function<void()>> posted;
    bool isTaken = false;
};

TEST(StallWatchdog, writesWhatItsThreadFound) {
    const TemporaryDirectory folder;
    const std::string file = folder.write(
        "stalls.json", R"([{"at":"2026-11-21T01:00:00.000Z","seconds":2.5,"sessions":1}])");
    std::atomic<double> now = 0;
    {
        MainThread mainThread;
        StallWatchdog watchdog(file, mainThread.post(), [&] { return after(Seconds(now.load())); });
        watchdog.setSessions(12);
        watchdog.start();
        const auto ping = mainThread.firstPing();
        now = 2.5;
        ping();
        EXPECT_EQ(watchdog.stalls().size(), 2U);
    }
    EXPECT_EQ(contentsOf(file),
              R"([{"at":"2026-11-21T01:00:00.000Z","seconds":2.5,"sessions":1},)"
              R"({"at":"2026-11-21T02:05:29.000Z","seconds":2.5,"sessions":12,"cpu":0.25}])");
    EXPECT_EQ(loadStalls(file).size(), 2U);
}

TEST(StallWatchdog, isForgottenByPingsThatOutliveIt) {
    MainThread mainThread;
    std::function<void()> ping;
    {
        StallWatchdog watchdog("", mainThread.post());
        watchdog.start();
        ping = mainThread.firstPing();
    }
    ping();
}

}  // namespace
}  // namespace fleetwise::testing
