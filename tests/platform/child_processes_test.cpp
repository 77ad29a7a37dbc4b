// Programs of the machine, run for real.

#include "platform/child_processes.h"

#include "foundation/text.h"
#include "platform/event_loop.h"
#include "reactions/action_runner.h"
#include "support/temporary_directory.h"

#include <gmock/gmock.h>

#include <fcntl.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <sstream>

namespace fleetwise::testing {
namespace {

using ::testing::ContainsRegex;
using ::testing::HasSubstr;
using ::testing::StartsWith;

/// Counts how many run at once.
class CountingProcesses final : public ChildProcesses {
public:
    tl::expected<void, std::string> start(const ChildCommand& command, Ended ended) override {
        most = std::max(most, ++running);
        return system->start(command, [this, ended = std::move(ended)](std::int32_t code) {
            --running;
            succeeded += code == 0 ? 1 : 0;
            ended(code);
        });
    }

    std::unique_ptr<ChildProcesses> system = makeChildProcesses();
    int running = 0;
    int most = 0;
    int succeeded = 0;
};

class ChildProcessesTest : public EventLoopTest {
protected:
    std::optional<std::int32_t> run(const ChildCommand& command) {
        std::optional<std::int32_t> code;
        const auto started = processes->start(command, [&](std::int32_t got) { code = got; });
        EXPECT_TRUE(started) << started.error();
        EXPECT_FALSE(code) << "not before start returns";
        EXPECT_TRUE(waitUntil([&] { return code.has_value(); }));
        return code;
    }

    /// Runs a script of the shell, and gives what it wrote to the file "$1".
    std::string written(const std::string& script) {
        const std::string file = folder.at("out");
        EXPECT_EQ(run({"/bin/sh", {"-c", script, "sh", file}, {}}), 0);
        return contentsOf(file);
    }

    /// Whether there are no children left, neither running nor waiting to be asked for.
    static bool hasNoChildren() {
        ::siginfo_t info{};
        return ::waitid(P_ALL, 0, &info, WEXITED | WNOHANG | WNOWAIT) != 0 && errno == ECHILD;
    }

    const TemporaryDirectory folder;
    std::unique_ptr<ChildProcesses> processes = makeChildProcesses();
};

TEST_F(ChildProcessesTest, tellHowTheyEnded) {
    const std::pair<const char*, int> rows[] = {
        {"exit 0", 0}, {"exit 77", 77}, {"kill -KILL $$", 137}, {"kill -TERM $$", 143}};
    for (const auto& [script, code] : rows)
        EXPECT_EQ(run({"/bin/sh", {"-c", script}, {}}), code) << script;
    EXPECT_TRUE(hasNoChildren());

    const auto never = [](std::int32_t) { ADD_FAILURE() << "did not start"; };
    const std::string plain = folder.write("plain", "no program");
    for (const ChildCommand& command :
         {ChildCommand{folder.at("missing"), {}, {}}, ChildCommand{plain, {}, {}},
          ChildCommand{"/bin/true", {std::string("a\0b", 3)}, {}}}) {
        const auto started = processes->start(command, never);
        ASSERT_FALSE(started);
        EXPECT_THAT(started.error(), StartsWith("Das Programm ließ sich nicht starten: "));
    }
    letPass(10);
}

TEST_F(ChildProcessesTest, getTheGivenEnvironmentOrOurs) {
    const std::string copy = folder.at("environment");
    const ChildCommand command{"/bin/cp", {"/proc/self/environ", copy}, {}};
    ChildCommand bare = command;
    bare.environment = StateAction::environment(SessionState::waiting, "id 1");
    ASSERT_EQ(run(bare), 0);
    EXPECT_EQ(contentsOf(copy),
              std::string("FLEETWISE_SESSION=id 1\0FLEETWISE_STATE=waiting\0", 47));
    ASSERT_EQ(run(command), 0);
    EXPECT_THAT(contentsOf(copy), HasSubstr("PATH=" + std::string(::getenv("PATH"))));
}

TEST_F(ChildProcessesTest, inheritNothingElse) {
    const int leaking = ::open("/dev/zero", O_RDONLY);  // NOLINT: not closed on exec, on purpose
    ASSERT_GT(leaking, 2);
    EXPECT_EQ(written(R"(find /proc/$$/fd -type l -fprintf "$1" '%f %l\n'; true)"),
              "0 /dev/null\n1 /dev/null\n2 /dev/null\n");
    ::close(leaking);

    ::sigset_t blocked;
    ::sigset_t before;
    ::sigemptyset(&blocked);
    ::sigaddset(&blocked, SIGUSR1);
    ::pthread_sigmask(SIG_BLOCK, &blocked, &before);
    const auto handler = ::signal(SIGUSR2, SIG_IGN);
    const std::string status = folder.at("status");
    EXPECT_EQ(run({"/bin/cp", {"/proc/self/status", status}, {}}), 0);
    ::signal(SIGUSR2, handler);
    ::pthread_sigmask(SIG_SETMASK, &before, nullptr);
    EXPECT_THAT(contentsOf(status), HasSubstr("SigBlk:\t0000000000000000\n"));
    // Signals 32 and 33 are the C library's own, which ignores them in all that it starts.
    EXPECT_THAT(contentsOf(status), ContainsRegex("SigIgn:\t0000000[01][08]0000000\n"));

    std::istringstream numbers(written("echo $$ $(cut -d' ' -f5 /proc/$$/stat) >\"$1\""));
    int pid = 0;
    int group = -1;
    numbers >> pid >> group;
    EXPECT_EQ(pid, group);
}

TEST_F(ChildProcessesTest, liveOnWhenTheObjectIsGone) {
    const std::string fifo = folder.makeFifo("fifo");
    const std::string file = folder.at("out");
    ASSERT_TRUE(processes->start(
        {"/bin/sh", {"-c", "read -r line <\"$1\"; echo $line >\"$2\"", "sh", fifo, file}, {}},
        [](std::int32_t) { ADD_FAILURE() << "called although nobody is there"; }));
    processes.reset();
    int end = -1;
    ASSERT_TRUE(waitUntil([&] {
        end = ::open(fifo.c_str(), O_WRONLY | O_CLOEXEC | O_NONBLOCK);
        return end >= 0;
    }));
    ASSERT_EQ(::write(end, "here\n", 5), 5);
    ::close(end);
    ::siginfo_t info{};
    ASSERT_EQ(::waitid(P_ALL, 0, &info, WEXITED), 0);
    EXPECT_EQ(contentsOf(file), "here\n");
    letPass(10);
}

TEST_F(ChildProcessesTest, runAThousandActionsAFewAtATime) {
    CountingProcesses counting;
    ActionRunner runner(counting, currentDate);
    for (int index = 0; index < 1000; ++index)
        runner.start({"/bin/true", {}}, SessionState::done, std::to_string(index));
    EXPECT_TRUE(waitUntil([&] { return counting.succeeded == 1000; }, 120'000))
        << counting.succeeded;
    EXPECT_EQ(counting.most, static_cast<int>(ActionRunner::maximumRunning));
    EXPECT_TRUE(hasNoChildren());
    EXPECT_TRUE(std::ranges::all_of(
        runner.log(), [](const ActionRunner::Entry& entry) { return entry.exitCode == 0; }));
    EXPECT_EQ(runner.log().back().sessionId, "999");
}

}  // namespace
}  // namespace fleetwise::testing
