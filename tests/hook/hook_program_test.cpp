// The real program: many at once, many in a row, killed at any moment, and fed with anything.

#include "hook_program.h"

#include "foundation/json.h"

#include <fmt/format.h>
#include <gmock/gmock.h>

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <random>

namespace fleetwise::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

std::string payload(const std::string& members) {
    return R"({"session_id":"s1","cwd":"/work",)" + members + "}\n";
}

std::string ofAgent(int number) {
    return payload(fmt::format(R"("agent_id":"agent{}","agent_type":"general")", number));
}

TEST(HookProgram, countsAHundredAtOnce) {
    const HookProgram hook;
    const auto atOnce = [&](const std::string& event, int from, int to) {
        std::vector<pid_t> processes;
        for (int number = from; number < to; ++number)
            processes.push_back(hook.start(event, ofAgent(number)));
        for (const pid_t process : processes)
            EXPECT_EQ(exitStatusOf(process), 0);
    };
    atOnce("SubagentStart", 0, 100);
    ASSERT_TRUE(hook.record("s1"));
    EXPECT_EQ(hook.record("s1")->subagents, 100);
    atOnce("SubagentStop", 30, 100);
    EXPECT_EQ(hook.record("s1")->subagents, 30);
    EXPECT_THAT(hook.names("status"), ElementsAre("s1.json"));
    EXPECT_THAT(hook.names("locks"), ElementsAre("s1.lock"));

    std::vector<pid_t> processes;
    for (int number = 0; number < 20; ++number) {
        processes.push_back(hook.start("SessionEnd", payload(R"("reason":"other")")));
        processes.push_back(hook.start("SubagentStart", ofAgent(number + 200)));
    }
    for (const pid_t process : processes)
        EXPECT_EQ(exitStatusOf(process), 0);
    hook.run("SessionEnd", payload(R"("reason":"other")"));
    EXPECT_EQ(hook.record("s1")->state, "dormant");
    EXPECT_THAT(hook.names("locks"), IsEmpty());
}

TEST(HookProgram, losesNothingWhereItMakesItsFolders) {
    for (int round = 0; round < 50; ++round) {
        const HookProgram hook;
        constexpr int programs = 6;
        std::vector<pid_t> processes;
        for (int number = 0; number < programs; ++number)
            processes.push_back(hook.start("SubagentStart", ofAgent(number)));
        for (const pid_t process : processes)
            EXPECT_EQ(exitStatusOf(process), 0);
        ASSERT_TRUE(hook.record("s1"));
        EXPECT_EQ(hook.record("s1")->subagents, programs) << contentsOf(hook.home.at("faults"));
    }
}

TEST(HookProgram, losesNothingInARow) {
    const HookProgram hook;
    constexpr int rounds = 1000;
    constexpr int running = 7;
    for (int number = 0; number < rounds; ++number) {
        ASSERT_EQ(hook.run("SubagentStart", ofAgent(number)), 0);
        ASSERT_EQ(hook.run("SubagentStop", ofAgent(number - running)), 0);
    }
    ASSERT_TRUE(hook.record("s1"));
    EXPECT_EQ(hook.record("s1")->subagents, running);
    EXPECT_THAT(hook.names("status"), ElementsAre("s1.json"));
    EXPECT_THAT(hook.names("locks"), ElementsAre("s1.lock"));
}

TEST(HookProgram, leavesTheOldOrTheNewFileWhenKilled) {
    const HookProgram hook;
    const auto useTool = [](int number) {
        return payload(fmt::format(R"("tool_name":"Tool{}")", number));
    };
    hook.run("PreToolUse", useTool(0));

    std::mt19937 random(1);
    double longest = 1e6;  // nanoseconds; follows the time that a run takes on this machine now
    std::string tool = "Tool0";
    int killed = 0;
    for (int number = 1; number <= 500; ++number) {
        const pid_t process = hook.start("PreToolUse", useTool(number));
        const double moment = std::uniform_real_distribution<>(0, longest)(random);
        ::timespec pause{.tv_sec = 0, .tv_nsec = static_cast<long>(moment)};
        ::nanosleep(&pause, nullptr);
        ::kill(process, SIGKILL);
        const bool wasKilled = exitStatusOf(process) == -1;
        killed += wasKilled ? 1 : 0;
        longest = std::min(longest * (wasKilled ? 1.1 : 0.8), 9e8);
        const auto record = hook.record("s1");
        ASSERT_TRUE(record) << "torn after " << number;
        const std::string newTool = fmt::format("Tool{}", number);
        ASSERT_TRUE(record->tool == tool || record->tool == newTool) << *record->tool;
        tool = *record->tool;
    }
    EXPECT_GT(killed, 0);
    EXPECT_EQ(exitStatusOf(hook.start("PreToolUse", useTool(501))), 0);
    EXPECT_EQ(hook.record("s1")->tool, "Tool501");
    EXPECT_THAT(hook.names("status"), ElementsAre("s1.json"));
    EXPECT_THAT(hook.names("locks"), ElementsAre("s1.lock"));
}

TEST(HookProgram, refusesInSilenceWhatItCannotUse) {
    const struct {
        const char* name;
        std::string payload;
        const char* fault;
    } rows[] = {
        {"nothing", "", "not JSON"},
        {"half a payload", R"({"session_id":"s1","cwd":"/wo)", "not JSON"},
        {"no object", "[1]", "session's id"},
        {"no session", R"({"cwd":"/work"})", "session's id"},
        {"path for a session", R"({"session_id":"../s1"})", "session's id"},
        {"hidden", R"({"session_id":".s1"})", "session's id"},
        {"long", R"({"session_id":")" + std::string(129, 'x') + "\"}", "session's id"},
        {"number for a session", R"({"session_id":7})", "session's id"},
        {"bottomless", std::string(2 << 20, '['), "not JSON"},
    };
    for (const auto& row : rows) {
        const HookProgram hook;
        EXPECT_EQ(hook.run("Stop", row.payload), 0) << row.name;
        EXPECT_FALSE(std::filesystem::exists(hook.home.at(".claude"))) << row.name;
        EXPECT_THAT(contentsOf(hook.home.at("faults")), HasSubstr(row.fault)) << row.name;
    }
}

TEST(HookProgram, writesReadableTextsWhateverTheAgentSays) {
    std::string manyEuros;
    for (int count = 0; count < 500; ++count)
        manyEuros += "€";
    const std::string longest = manyEuros.substr(0, 400 * 3);
    // Cut wherever it may be, a text of escapes stays one of escapes.
    const std::string backslashes(2 * 40'000, '\\');
    const struct {
        const char* name;
        std::string message;
        std::string written;
    } rows[] = {
        {"cut between characters", manyEuros, longest},
        {"half an emoji", R"(a\ud83d b\ude00)", "a\uFFFD b\uFFFD"},
        {"a whole one", R"(\ud83d\ude00)", "\U0001F600"},
        {"no surrogate at all", R"(C:\\ud83d)", R"(C:\ud83d)"},
        {"not UTF-8", "a\xff\xe2\x82 b", "a\uFFFD\uFFFD\uFFFD b"},
        {"control characters", R"(a\u0000\n\u001b)", std::string("a\0\n\x1b", 4)},
        {"long", backslashes, std::string(400, '\\')},
        {"long and odd", "x" + backslashes, "x" + std::string(399, '\\')},
        {"long escapes", R"(\u0041)" + backslashes, "A" + std::string(399, '\\')},
    };
    const HookProgram hook;
    for (const auto& row : rows) {
        const std::string event = payload(R"("last_assistant_message":")" + row.message + "\"");
        EXPECT_EQ(hook.run("Stop", event), 0) << row.name;
        ASSERT_TRUE(hook.record("s1")) << row.name;
        EXPECT_EQ(hook.record("s1")->message, row.written) << row.name;
    }
}

TEST(HookProgram, takesUpWhateverStandsInTheFilesPlace) {
    const struct {
        const char* name;
        std::string contents;
    } rows[] = {
        {"nothing", ""},
        {"no JSON", "{\"session_id\":"},
        {"a list", "[]"},
        {"odd types",
         R"({"state":7,"background":[1,["x"]],"monitors":{"m":"x"},"requests":[3,"x",{"at":"y"}],
             "subagent_ids":{"a":{}},"ts":"now","done_at":null,"state_ts":1e999})"},
        {"another's record", R"({"session_id":"s2","state":"Ω","ts":1,"more":{"of":[{}]}})"},
        {"too large", std::string(3 << 20, ' ')},
    };
    for (const auto& row : rows) {
        const HookProgram hook;
        hook.home.write(".claude/fleetwise/status/s1.json", row.contents);
        EXPECT_EQ(hook.run("UserPromptSubmit", payload(R"("prompt":"x")")), 0) << row.name;
        ASSERT_TRUE(hook.record("s1")) << row.name;
        EXPECT_EQ(hook.record("s1")->state, "working") << row.name;
        EXPECT_EQ(hook.record("s1")->sessionId, "s1") << row.name;
    }
}

TEST(HookProgram, harmsNoFileBehindALink) {
    const HookProgram hook;
    const std::string precious = hook.home.write("precious", "mine");
    hook.home.makeDirectory(".claude/fleetwise/status");
    hook.home.makeDirectory(".claude/fleetwise/locks");
    hook.home.makeLink(".claude/fleetwise/status/s1.json", precious);
    hook.home.makeLink(".claude/fleetwise/locks/s1.new", precious);
    hook.run("Stop", payload(R"("prompt":"x")"));
    hook.run("Stop", payload(R"("prompt":"x")"));
    EXPECT_EQ(contentsOf(precious), "mine");
    EXPECT_TRUE(hook.record("s1"));
    hook.home.makeFifo(".claude/fleetwise/locks/s1.new");
    hook.run("UserPromptSubmit", payload(R"("prompt":"x")"));
    EXPECT_EQ(hook.record("s1")->state, "working");

    const HookProgram blocked;
    blocked.home.write(".claude/fleetwise/status/s1.json/inside", "mine");
    EXPECT_EQ(blocked.run("Stop", payload(R"("prompt":"x")")), 0);
    EXPECT_EQ(contentsOf(blocked.home.at(".claude/fleetwise/status/s1.json/inside")), "mine");
    EXPECT_THAT(contentsOf(blocked.home.at("faults")), HasSubstr("cannot be replaced"));
}

TEST(HookProgram, keepsItsFilesPrivateAndSessionsApart) {
    const HookProgram hook;
    hook.run("Stop", payload(R"("last_assistant_message":"one")"));
    hook.run("UserPromptSubmit", R"({"session_id":"s2","cwd":"/work"})");
    EXPECT_EQ(hook.record("s1")->state, "done");
    EXPECT_EQ(hook.record("s2")->state, "working");
    const auto mode = [&](const std::string& path) {
        struct ::stat status {};
        EXPECT_EQ(::stat(hook.home.at(path).c_str(), &status), 0);
        return status.st_mode & 07777;
    };
    EXPECT_EQ(mode(".claude/fleetwise"), 0700U);
    EXPECT_EQ(mode(".claude/fleetwise/status"), 0700U);
    EXPECT_EQ(mode(".claude/fleetwise/status/s1.json"), 0600U);
}

}  // namespace
}  // namespace fleetwise::testing
