#include "platform/directory_watcher.h"

#include "foundation/virtual_main_loop.h"
#include "platform/event_loop.h"
#include "platform/qt_main_loop.h"
#include "support/temporary_directory.h"

#include <stdio.h>

#include <fcntl.h>
#include <sys/resource.h>

#include <filesystem>
#include <functional>

namespace fleetwise::testing {
namespace {

namespace files = std::filesystem;

/// Lets this process open no further files while it lives.
class NoFurtherFiles {
public:
    NoFurtherFiles() {
        ::getrlimit(RLIMIT_NOFILE, &before);
        const ::rlimit none{.rlim_cur = 3, .rlim_max = before.rlim_max};
        ::setrlimit(RLIMIT_NOFILE, &none);
    }
    NoFurtherFiles(const NoFurtherFiles&) = delete;
    NoFurtherFiles& operator=(const NoFurtherFiles&) = delete;
    ~NoFurtherFiles() { ::setrlimit(RLIMIT_NOFILE, &before); }

private:
    ::rlimit before{};
};

class DirectoryWatcherTest : public EventLoopTest {
protected:
    /// Watches the folder `name` of the home.
    void watch(const std::string& name) {
        subscription = loop.watchDirectory(home.at(name), [this] { ++calls; });
    }

    /// Whether the step is told of. Waits for what else it may have brought, so that the next step
    /// is not credited with it.
    bool isTold(const std::function<void()>& step) {
        const int before = calls;
        step();
        const bool told = waitUntil([&] { return calls > before; });
        letPass(80);
        return told;
    }

    void exchange(const std::string& one, const std::string& other) {
        ASSERT_EQ(::renameat2(AT_FDCWD, home.at(one).c_str(), AT_FDCWD, home.at(other).c_str(),
                              RENAME_EXCHANGE),
                  0);
    }

    TemporaryDirectory home;
    QtMainLoop loop;
    std::unique_ptr<MainLoop::Subscription> subscription;
    int calls = 0;
};

TEST_F(DirectoryWatcherTest, tellsOfEveryKindOfChange) {
    home.makeDirectory("status");
    home.write("outside", "new");
    watch("status");
    letPass(60);
    EXPECT_EQ(calls, 0);
    EXPECT_TRUE(isTold([&] { home.write("status/a", "one"); })) << "created";
    EXPECT_TRUE(isTold([&] { home.write("status/a", "two"); })) << "rewritten in place";
    EXPECT_TRUE(isTold([&] { home.append("status/a", "more"); })) << "appended to";
    EXPECT_TRUE(isTold([&] { exchange("outside", "status/a"); })) << "exchanged";
    EXPECT_TRUE(isTold([&] { files::rename(home.at("outside"), home.at("status/a")); }))
        << "replaced";
    EXPECT_TRUE(isTold([&] { files::remove(home.at("status/a")); })) << "deleted";
    const int before = calls;
    home.write("outside", "of no interest");
    letPass(80);
    EXPECT_EQ(calls, before);
}

TEST_F(DirectoryWatcherTest, tellsOfABurstOnceAndOfASteadyStreamAgainAndAgain) {
    home.makeDirectory("status");
    watch("status");
    for (int index = 0; index < 300; ++index)
        home.write("status/" + std::to_string(index), "x");
    ASSERT_TRUE(waitUntil([&] { return calls > 0; }));
    letPass(80);
    EXPECT_EQ(calls, 1);

    calls = 0;
    int written = 0;
    ASSERT_TRUE(waitUntil([&] {
        home.write("status/stream", std::to_string(++written));
        return calls >= 3;
    }));
    EXPECT_GT(written, calls);
}

TEST_F(DirectoryWatcherTest, survivesItsFolderGoingAndComing) {
    home.makeDirectory("state/status");
    watch("state/status");
    EXPECT_TRUE(isTold([&] { files::remove_all(home.at("state/status")); })) << "deleted";
    EXPECT_TRUE(isTold([&] { home.makeDirectory("state/status"); })) << "made again";
    EXPECT_TRUE(isTold([&] { home.write("state/status/a", "1"); })) << "written in it";

    EXPECT_TRUE(isTold([&] { files::rename(home.at("state/status"), home.at("state/old")); }))
        << "renamed away";
    EXPECT_TRUE(isTold([&] { home.makeDirectory("state/status"); })) << "replaced";
    EXPECT_TRUE(isTold([&] { home.write("state/status/a", "2"); })) << "written in the new one";
    const int before = calls;
    home.write("state/old/a", "of no interest");
    letPass(80);
    EXPECT_EQ(calls, before);

    EXPECT_TRUE(isTold([&] { files::rename(home.at("state"), home.at("before")); }))
        << "parent renamed away";
    EXPECT_TRUE(isTold([&] { files::rename(home.at("before"), home.at("state")); })) << "and back";
    EXPECT_TRUE(isTold([&] { home.write("state/status/a", "3"); })) << "written after that";
    EXPECT_TRUE(isTold([&] {
        files::remove_all(home.at("state/status"));
        home.makeDirectory("state/status");
    })) << "replaced at once";
    EXPECT_TRUE(isTold([&] { home.write("state/status/a", "4"); })) << "written after that too";
}

TEST_F(DirectoryWatcherTest, findsAFolderThatIsMissingAtTheStart) {
    watch("a/b/status");
    home.write("a-file", "a stranger beside the first folder");
    letPass(80);
    EXPECT_EQ(calls, 0);
    EXPECT_TRUE(isTold([&] { home.makeDirectory("a/b/status"); })) << "made with its parents";
    EXPECT_TRUE(isTold([&] { home.write("a/b/status/x", "1"); }));

    files::remove_all(home.at("a"));
    letPass(80);
    calls = 0;
    for (const char* step : {"a", "a/b"}) {
        home.makeDirectory(step);
        letPass(80);
        EXPECT_EQ(calls, 0) << step;
    }
    home.write("a/b/status", "a file in its place");
    letPass(80);
    EXPECT_EQ(calls, 0);
    files::remove(home.at("a/b/status"));
    EXPECT_TRUE(isTold([&] { home.makeDirectory("a/b/status"); })) << "in place of the file";
}

TEST_F(DirectoryWatcherTest, standsTheSystemsRefusalAndTriesAgain) {
    home.makeDirectory("status");
    EXPECT_EQ(watchProblem(home.at("status")), std::nullopt);
    EXPECT_EQ(watchProblem(home.at("missing/status")), std::nullopt);
    VirtualMainLoop clock(currentDate());
    {
        // The sanitizers open files when they meet a type for the first time.
        const auto timer = clock.every(Seconds(60), [] {});
        const auto watcher = startDirectoryWatcher(clock, home.at("status"), [] {});
        clock.advance(Seconds(60));
    }
    {
        const NoFurtherFiles limit;
        EXPECT_EQ(watchProblem(home.at("status")), WatchProblem::limitReached);
        subscription = startDirectoryWatcher(clock, home.at("status"), [this] { ++calls; });
        clock.advance(Seconds(600));
    }
    home.write("status/a", "1");
    letPass(40);
    EXPECT_EQ(calls, 0);

    clock.advance(Seconds(60));
    EXPECT_EQ(calls, 1) << "what was missed meanwhile";
    home.write("status/a", "2");
    EXPECT_TRUE(waitUntil([&] {
        clock.advance(Seconds(1));
        return calls == 2;
    }));
    subscription.reset();
}

TEST_F(DirectoryWatcherTest, tellsNothingOnceItIsGone) {
    home.makeDirectory("status");
    VirtualMainLoop clock(currentDate());
    subscription = startDirectoryWatcher(clock, home.at("status"), [this] { ++calls; });
    home.write("status/a", "1");
    letPass(20);
    subscription.reset();
    clock.advance(Seconds(1));
    EXPECT_EQ(calls, 0) << "ended within a burst";

    subscription = loop.watchDirectory(home.at("status"), [this] {
        ++calls;
        subscription.reset();
    });
    EXPECT_TRUE(isTold([&] { home.write("status/b", "1"); }));
    home.write("status/c", "1");
    letPass(80);
    EXPECT_EQ(calls, 1);
}

}  // namespace
}  // namespace fleetwise::testing
