#include "app/program_run.h"
#include "demo/codex_actor.h"
#include "sources/process_table.h"
#include "support/temporary_directory.h"

#include <gmock/gmock.h>

#include <unistd.h>

#include <array>
#include <filesystem>
#include <map>
#include <regex>
#include <set>

namespace fleetwise::testing {
namespace {

using ::testing::HasSubstr;
using ::testing::IsSupersetOf;
using ::testing::Not;

/// The raw states in the program's report on this home.
std::set<std::string> statesIn(const std::string& report) {
    const std::regex pattern(R"(Zustand: .*\((\w+)\))");
    std::set<std::string> states;
    for (std::sregex_iterator match(report.begin(), report.end(), pattern), end; match != end;
         ++match)
        states.insert((*match)[1]);
    return states;
}

/// What the demo prints and leaves behind in the home after `options`.
ProgramRun play(const TemporaryDirectory& home, const std::string& options) {
    return run(home, "--no-app --rate 0 --pid " + std::to_string(::getpid()) + " " + options,
               FLEETWISE_DEMO);
}

TEST(Demo, leadsTheFleetThroughTheStates) {
    std::set<std::string> states;
    for (const int events : {20, 40, 80, 200}) {
        const TemporaryDirectory home;
        const ProgramRun played =
            play(home, "--events " + std::to_string(events) + " '" + home.path() + "'");
        ASSERT_EQ(played.exitStatus, 0) << played.errors;
        const std::string report = run(home, "--dump").output;
        EXPECT_THAT(report, Not(HasSubstr("übersprungen"))) << "files that cannot be read";
        EXPECT_THAT(report, HasSubstr("Repair the date parser's tests"));
        states.merge(statesIn(report));
    }
    EXPECT_THAT(states, IsSupersetOf({"working", "waiting", "decision", "waitingForSubagents",
                                      "failed", "done", "scheduled", "compacting"}));
}

/// The processes of Codex in the home, with the rollout that each holds open.
std::map<std::int32_t, std::string> codexProcesses(const TemporaryDirectory& home) {
    constexpr std::array<std::string_view, 1> names{"codex"};
    const ProcessTable& table = ProcessTable::system();
    std::map<std::int32_t, std::string> found;
    for (const std::int32_t pid : table.processesOf(names)) {
        // Other homes have theirs.
        if (!table.executable(pid).value_or("").starts_with(home.path())) continue;
        EXPECT_EQ(table.workingDirectory(pid), home.at("work"));
        for (const std::string& file : table.openFiles(pid)) {
            if (file.ends_with(".jsonl")) found[pid] = file;
        }
    }
    return found;
}

TEST(Demo, codexRunsAndWritesItsRollouts) {
    const TemporaryDirectory home;
    home.makeDirectory("work");
    {
        const auto actor = demo::CodexActor::start({.home = home.path(),
                                                    .standIn = FLEETWISE_DEMO_AGENT,
                                                    .cwd = home.at("work"),
                                                    .name = "Named"});
        ASSERT_TRUE(actor) << actor.error();
        const auto running = codexProcesses(home);
        ASSERT_EQ(running.size(), 1U);
        const std::string rollout = running.begin()->second;
        EXPECT_THAT(contentsOf(home.at(".codex/session_index.jsonl")), HasSubstr("Named"));

        const auto before = contentsOf(rollout);
        for (int turns = 0; turns < 100; ++turns)
            EXPECT_TRUE((*actor)->act());
        const std::string after = contentsOf(rollout);
        EXPECT_TRUE(after.starts_with(before));
        for (const char* event :
             {"turn_aborted", "server_overloaded", "token_count", "spawn_agent"})
            EXPECT_THAT(after, HasSubstr(event));
        int subagents = 0;
        for (const auto& entry :
             std::filesystem::recursive_directory_iterator(home.at(".codex/sessions"))) {
            if (!entry.is_regular_file() || entry.path() == rollout) continue;
            const std::string written = contentsOf(entry.path());
            EXPECT_THAT(written, HasSubstr("thread_spawn"));
            EXPECT_THAT(written, HasSubstr(before)) << "its parent's first line";
            ++subagents;
        }
        EXPECT_GT(subagents, 0);
    }
    EXPECT_TRUE(codexProcesses(home).empty());
}

TEST(Demo, leavesNothingBehindAndNoOccupiedFolderHarmed) {
    const TemporaryDirectory home;
    const ProgramRun played = play(home, "--events 3");
    ASSERT_EQ(played.exitStatus, 0) << played.errors;
    const std::string folder = played.output.substr(0, played.output.find('\n'));
    EXPECT_THAT(folder, HasSubstr("fleetwise-demo-"));
    EXPECT_FALSE(std::filesystem::exists(folder));

    const std::string own = home.write(".claude/settings.json", "{}");
    EXPECT_EQ(play(home, "--events 3 '" + home.path() + "'").exitStatus, 1);
    EXPECT_EQ(contentsOf(own), "{}");
    EXPECT_FALSE(std::filesystem::exists(home.at(".claude/sessions")));
}

}  // namespace
}  // namespace fleetwise::testing
