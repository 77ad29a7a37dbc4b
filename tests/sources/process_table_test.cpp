#include "sources/process_table.h"

#include "support/temporary_directory.h"

#include <gmock/gmock.h>
#include <spawn.h>

#include <fcntl.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <filesystem>
#include <limits>

namespace fleetwise::testing {
namespace {

using ::testing::Contains;
using ::testing::IsEmpty;
using ::testing::Not;

constexpr std::array<std::string_view, 2> programNames = {"fleetwise-other", "fleetwise-sleeper"};

/// Starts the program in the folder `cwd` with two files open, for a minute at most.
pid_t startSleeper(const std::string& program, const std::string& cwd, const std::string& file,
                   const std::string& removedFile) {
    posix_spawn_file_actions_t actions;
    ::posix_spawn_file_actions_init(&actions);
    ::posix_spawn_file_actions_addchdir_np(&actions, cwd.c_str());
    ::posix_spawn_file_actions_addopen(&actions, 8, file.c_str(), O_RDONLY, 0);
    ::posix_spawn_file_actions_addopen(&actions, 9, removedFile.c_str(), O_RDONLY, 0);
    std::string name = "sleep";
    std::string duration = "60";
    char* arguments[] = {name.data(), duration.data(), nullptr};
    pid_t child = -1;
    EXPECT_EQ(::posix_spawn(&child, program.c_str(), &actions, nullptr, arguments, ::environ), 0);
    ::posix_spawn_file_actions_destroy(&actions);
    return child;
}

TEST(ProcessTable, knowsThisProcessWhateverItsName) {
    const ProcessTable& table = ProcessTable::system();
    EXPECT_TRUE(table.exists(::getpid()));
    const auto before = table.process(::getpid());
    ASSERT_TRUE(before);
    EXPECT_EQ(before->parent, ::getppid());

    std::array<char, 16> name{};
    ::prctl(PR_GET_NAME, name.data());
    ::prctl(PR_SET_NAME, "a) R (1 2 3");
    EXPECT_EQ(table.process(::getpid()), before);
    ::prctl(PR_SET_NAME, name.data());
}

TEST(ProcessTable, knowsNoProcessUnderAnIdThatNoneCanHave) {
    const ProcessTable& table = ProcessTable::system();
    using Limits = std::numeric_limits<std::int32_t>;
    for (const std::int32_t pid : {0, -1, -::getpid(), Limits::min(), Limits::max()}) {
        EXPECT_FALSE(table.exists(pid)) << pid;
        EXPECT_FALSE(table.process(pid)) << pid;
        EXPECT_FALSE(table.executable(pid)) << pid;
        EXPECT_FALSE(table.applicationScope(pid)) << pid;
        EXPECT_FALSE(table.startedAt(pid)) << pid;
        EXPECT_FALSE(table.workingDirectory(pid)) << pid;
        EXPECT_THAT(table.openFiles(pid), IsEmpty()) << pid;
    }
}

TEST(ProcessTable, forgetsAChildOnceItIsReaped) {
    const ProcessTable& table = ProcessTable::system();
    const pid_t child = ::fork();
    if (child == 0) ::_exit(0);
    const auto process = table.process(child);
    ASSERT_TRUE(process);
    EXPECT_EQ(process->parent, ::getpid());
    ASSERT_EQ(::waitpid(child, nullptr, 0), child);
    EXPECT_FALSE(table.exists(child));
    EXPECT_FALSE(table.process(child));
}

TEST(ProcessTable, findsAProgramByItsFileWithWhatItHasOpenUntilItIsReaped) {
    const ProcessTable& table = ProcessTable::system();
    const TemporaryDirectory folder;
    const std::string program = folder.at("fleetwise-sleeper");
    std::filesystem::copy_file("/bin/sleep", program);
    const std::string cwd = folder.makeDirectory("work here");
    const std::string file = folder.write("open file.jsonl", "{}");
    const std::string removed = folder.write("removed.jsonl", "{}");
    const Date before = currentDate();
    const pid_t child = startSleeper(program, cwd, file, removed);
    ASSERT_GT(child, 0);
    std::filesystem::remove(program);
    std::filesystem::remove(removed);

    EXPECT_THAT(table.processesOf(programNames), Contains(child));
    EXPECT_THAT(table.processesOf({}), IsEmpty());
    EXPECT_EQ(table.workingDirectory(child), cwd);
    const auto openFiles = table.openFiles(child);
    EXPECT_THAT(openFiles, Contains(file));
    EXPECT_THAT(openFiles, Not(Contains(::testing::StartsWith(removed))));
    const auto startedAt = table.startedAt(child);
    ASSERT_TRUE(startedAt);
    EXPECT_NEAR(secondsSince1970(*startedAt), secondsSince1970(before), 30);

    ::kill(child, SIGKILL);
    ASSERT_EQ(::waitpid(child, nullptr, 0), child);
    EXPECT_THAT(table.processesOf(programNames), Not(Contains(child)));
    EXPECT_FALSE(table.startedAt(child));
    EXPECT_FALSE(table.workingDirectory(child));
    EXPECT_THAT(table.openFiles(child), IsEmpty());
}

TEST(ProcessTable, findsAProgramThatHidesItsFileByItsName) {
    const ProcessTable& table = ProcessTable::system();
    std::array<int, 2> ready{};
    ASSERT_EQ(::pipe2(ready.data(), O_CLOEXEC), 0);
    const pid_t child = ::fork();
    if (child == 0) {
        ::prctl(PR_SET_NAME, "fleetwise-sleeper");
        ::prctl(PR_SET_DUMPABLE, 0);
        (void)!::write(ready[1], "!", 1);
        ::alarm(60);
        ::pause();
        ::_exit(0);
    }
    char told = 0;
    EXPECT_EQ(::read(ready[0], &told, 1), 1);
    // A user who may trace every process still sees its file, which is that of this test.
    if (!table.executable(child)) {
        EXPECT_THAT(table.processesOf(programNames), Contains(child));
    }
    ::kill(child, SIGKILL);
    EXPECT_EQ(::waitpid(child, nullptr, 0), child);
    ::close(ready[0]);
    ::close(ready[1]);
}

}  // namespace
}  // namespace fleetwise::testing
