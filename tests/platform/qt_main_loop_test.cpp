#include "platform/qt_main_loop.h"

#include "platform/event_loop.h"

#include <gmock/gmock.h>

#include <atomic>
#include <thread>
#include <vector>

namespace fleetwise::testing {
namespace {

using ::testing::ElementsAre;

class QtMainLoopTest : public EventLoopTest {
protected:
    std::optional<QtMainLoop> loop{std::in_place};
};

TEST_F(QtMainLoopTest, runsPostedActionsInTheirOrderAndThoseTheyPostLast) {
    std::vector<int> order;
    loop->post([&] {
        loop->post([&] { order.push_back(3); });
        order.push_back(1);
    });
    loop->post([&] { order.push_back(2); });
    EXPECT_TRUE(order.empty()) << "posting must not run anything";
    ASSERT_TRUE(waitUntil([&] { return order.size() == 3; }));
    EXPECT_THAT(order, ElementsAre(1, 2, 3));
}

TEST_F(QtMainLoopTest, runsOnItsThreadWhatOthersPost) {
    constexpr int each = 500;
    int sum = 0;
    bool isOwnThread = true;
    const auto own = std::this_thread::get_id();
    std::vector<std::thread> threads;
    for (int index = 0; index < 4; ++index) {
        threads.emplace_back([&] {
            for (int count = 0; count < each; ++count) {
                loop->post([&] {
                    ++sum;
                    isOwnThread = isOwnThread && std::this_thread::get_id() == own;
                });
            }
        });
    }
    EXPECT_TRUE(waitUntil([&] { return sum == 4 * each; }));
    EXPECT_TRUE(isOwnThread);
    for (std::thread& thread : threads)
        thread.join();
}

TEST_F(QtMainLoopTest, dropsWhatWaitsWhenItEnds) {
    int ran = 0;
    loop->post([&] { ++ran; });
    loop.reset();
    letPass(20);
    EXPECT_EQ(ran, 0);
}

TEST_F(QtMainLoopTest, timersRepeatUntilTheySubscribeNoLonger) {
    int ticks = 0;
    int calls = 0;
    std::unique_ptr<MainLoop::Subscription> repeating;
    std::unique_ptr<MainLoop::Subscription> once;
    repeating = loop->every(Seconds(0.001), [&] {
        if (++ticks == 3) repeating.reset();
    });
    once = loop->after(Seconds(0), [&] {
        ++calls;
        once.reset();
    });
    const auto ended = loop->after(Seconds(0.02), [&, guard = std::make_shared<int>(7)] {
        EXPECT_EQ(*guard, 7);
        ++calls;
    });
    ASSERT_TRUE(waitUntil([&] { return ticks == 3 && calls == 2; }));
    letPass(20);
    EXPECT_EQ(ticks, 3);
    EXPECT_EQ(calls, 2);
}

TEST_F(QtMainLoopTest, aTimerNeverRunsEarly) {
    const auto start = std::chrono::steady_clock::now();
    bool ran = false;
    // From one second on the system rounds as it likes.
    const auto timer = loop->after(Seconds(1.03), [&] { ran = true; });
    ASSERT_TRUE(waitUntil([&] { return ran; }));
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(1030));
}

TEST_F(QtMainLoopTest, aJobRunsElsewhereAndItsValueComesBack) {
    const auto own = std::this_thread::get_id();
    std::vector<std::string> values;
    for (int index = 0; index < 50; ++index) {
        runInBackground(
            *loop, [=] { return std::this_thread::get_id() == own ? "here" : "elsewhere"; },
            [&](std::string value) {
                EXPECT_EQ(std::this_thread::get_id(), own);
                values.push_back(std::move(value));
            });
    }
    ASSERT_TRUE(waitUntil([&] { return values.size() == 50; }));
    EXPECT_THAT(values, ::testing::Each("elsewhere"));
}

TEST_F(QtMainLoopTest, waitsForBegunJobsAtItsEndAndDropsTheRest) {
    std::atomic<int> begun = 0;
    std::atomic<int> finished = 0;
    std::atomic<bool> mayEnd = false;
    int followed = 0;
    for (int index = 0; index < 200; ++index) {
        loop->background(
            [&] {
                ++begun;
                while (!mayEnd)
                    std::this_thread::yield();
                ++finished;
            },
            [&] { ++followed; });
    }
    ASSERT_TRUE(waitUntil([&] { return begun > 0; }));
    std::thread release([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
        mayEnd = true;
    });
    loop.reset();
    EXPECT_EQ(finished, begun);
    EXPECT_LT(begun, 200);
    letPass(20);
    EXPECT_EQ(followed, 0);
    release.join();
}

}  // namespace
}  // namespace fleetwise::testing
