#include "sources/process_table.h"

#include <gtest/gtest.h>

#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <limits>

namespace fleetwise::testing {
namespace {

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

}  // namespace
}  // namespace fleetwise::testing
