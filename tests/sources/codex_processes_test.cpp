#include "sources/codex_processes.h"

#include "support/fake_process_table.h"

#include <gmock/gmock.h>

namespace fleetwise::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

const Date noon = dateFromSeconds(1795262400);

TEST(CodexProcesses, areKnownByTheirProgram) {
    const struct {
        const char* executable;
        bool isCodex;
    } rows[] = {
        {"/home/dev/.local/bin/codex", true},
        {"/opt/codex-x86_64-unknown-linux-musl", true},
        {"/opt/codex-aarch64-unknown-linux-gnu", true},
        {"/opt/codex/bin/codex-linux-sandbox", false},
        {"/opt/codex/bin/codex-x86_64", false},
        {"/opt/codex/bin/node", false},
        {"/usr/bin/mycodex", false},
        {"", false},
    };
    for (const auto& row : rows) {
        FakeProcessTable machine;
        machine.processes[42].executable = row.executable;
        const bool isFound = !CodexProcesses(machine).observe(noon).empty();
        EXPECT_EQ(isFound, row.isCodex) << row.executable;
    }
}

TEST(CodexProcesses, comeWithTheirOrTheirParentsFolderAndOpenRollouts) {
    FakeProcessTable machine;
    machine.processes[98].cwd = "/work/shell";
    machine.processes[99] = {.parent = 98, .executable = "/usr/bin/codex"};
    machine.processes[7] = {
        .executable = "/usr/bin/codex",
        .startedAt = noon - Seconds(60),
        .cwd = "/work/shop",
        .openFiles = {"/dev/null", "/h/.codex/sessions/2026/rollout-b.jsonl",
                      "/h/rollout-c.jsonl/log", "/h/rollout-a.jsonl", "/h/rollout-a.jsonl",
                      "/h/rollout-d.jsonl.gz", "/h/my-rollout-e.jsonl"}};
    EXPECT_THAT(CodexProcesses(machine).observe(noon),
                ElementsAre(CodexProcess{.pid = 7,
                                         .startedAt = noon - Seconds(60),
                                         .cwd = "/work/shop",
                                         .openRollouts = {"rollout-a.jsonl", "rollout-b.jsonl"}},
                            CodexProcess{.pid = 99, .cwd = "/work/shell"}));
}

TEST(CodexProcesses, areLookedForOnceASecond) {
    FakeProcessTable machine;
    CodexProcesses processes(machine);
    EXPECT_THAT(processes.observe(noon), IsEmpty());
    machine.processes[7].executable = "/usr/bin/codex";
    EXPECT_THAT(processes.observe(noon + Seconds(0.9)), IsEmpty());
    EXPECT_EQ(processes.observe(noon + Seconds(1)).size(), 1);
    machine.processes.clear();
    EXPECT_EQ(processes.observe(noon + Seconds(1.9)).size(), 1);
    EXPECT_THAT(processes.observe(noon + Seconds(0.5)), IsEmpty()) << "the clock went back";
}

}  // namespace
}  // namespace fleetwise::testing
