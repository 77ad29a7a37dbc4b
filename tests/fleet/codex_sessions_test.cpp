// Codex's sessions as a pass over rollouts and processes lists them.

#include "fleet_home.h"

#include <gmock/gmock.h>

namespace fleetwise::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::UnorderedElementsAreArray;
using Events = std::vector<std::pair<std::string, Json>>;

const Events started{{"task_started", {{"model_context_window", 1000}}}};
const Events aborted{{"task_started", {}}, {"turn_aborted", {}}};
const Events answered{{"task_started", {}}, {"task_complete", {{"last_agent_message", "Done."}}}};
const Events failed{{"task_started", {}},
                    {"task_complete", {{"error", {{"message", "usage limit"}}}}}};

FakeProcess codex(const FleetHome& fleet, double age) {
    FakeProcess process;
    process.executable = "/opt/bin/codex";
    process.startedAt = fleet.now - Seconds(age);
    return process;
}

TEST(CodexSessions, areLiveWhileTheirProcessRuns) {
    const struct {
        const char* name;
        Events events;
        double age;
        bool isOpen;
        std::optional<double> folderProcessAge;  ///< of a process in the session's folder
        SessionState expected;
        bool isLive;
    } rows[] = {
        {"open, at work", started, 900, true, {}, SessionState::working, true},
        {"open, interrupted", aborted, 900, true, {}, SessionState::idle, true},
        {"open, answered", answered, 900, true, {}, SessionState::done, true},
        {"open, failed", failed, 900, true, {}, SessionState::failed, true},
        {"open, answer beyond its grace", answered, 1801, true, {}, SessionState::idle, true},
        {"in its folder", answered, 900, false, 1000, SessionState::done, true},
        {"begun after the last event", answered, 900, false, 800, SessionState::dormant, false},
        {"busy within five minutes", started, 300, false, {}, SessionState::working, true},
        {"busy five minutes ago", started, 301, false, {}, SessionState::dormant, false},
        {"answered just now", answered, 5, false, {}, SessionState::dormant, false},
        {"an event ahead of the clock", started, -301, false, {}, SessionState::dormant, false},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        FleetHome fleet;
        const std::string name = fleet.writesRollout("c", row.age, row.events);
        if (row.isOpen) {
            fleet.processes.processes[7] = codex(fleet, 2000);
            fleet.processes.processes[7].openFiles = {"/dev/null", "/elsewhere/" + name};
        }
        if (row.folderProcessAge) {
            fleet.processes.processes[7] = codex(fleet, *row.folderProcessAge);
            fleet.processes.processes[7].cwd = fleet.project;
        }
        const Session session = only(fleet.collect(), "c");
        EXPECT_EQ(session.state, row.expected);
        EXPECT_EQ(session.isLive, row.isLive);
        EXPECT_EQ(session.pid.has_value(), row.isOpen || (row.folderProcessAge && row.isLive));
        fleet.input.isPreview = true;
        EXPECT_EQ(fleet.collect().sessions.size(), row.isLive ? 1U : 0U);
    }
}

TEST(CodexSessions, tellWhatTheirRolloutsTell) {
    FleetHome fleet;
    fleet.home.write("codex/session_index.jsonl", R"({"id":"c","thread_name":"Named"})");
    const Json usage{{"total_token_usage", {{"output_tokens", 70}}},
                     {"last_token_usage", {{"total_tokens", 250}}}};
    Events events{{"user_message", {{"message", "Mend the build"}}}};
    events.insert(events.end(), failed.begin(), failed.end());
    events.insert(events.begin() + 2, {"token_count", {{"info", usage}}});
    const std::string name =
        fleet.writesRollout("c", 10, events, {{"originator", " Codex Desktop"}});
    fleet.processes.processes[7] = codex(fleet, 2000);
    fleet.processes.processes[7].openFiles = {"/" + name};
    Session session = only(fleet.collect(), "c");
    EXPECT_TRUE(session.agent.isCodex());
    EXPECT_EQ(session.title, "Named");
    EXPECT_EQ(session.origin, SessionOrigin::desktop);
    EXPECT_EQ(session.hostApp, "Codex");
    EXPECT_EQ(session.cwd, fleet.project);
    EXPECT_EQ(session.detail(fleet.now, nullptr), "usage limit");
    EXPECT_EQ(session.stateSince, fleet.now - Seconds(10));
    EXPECT_EQ(session.startedAt, std::nullopt);
    EXPECT_EQ(session.stats->outputTokens, 70);
    EXPECT_EQ(session.contextFill({}), 250 / 200'000.0) << "no window told";

    fleet.home.write("codex/session_index.jsonl", "");
    EXPECT_EQ(only(fleet.collect(), "c").title, "Mend the build");
}

TEST(CodexSessions, followTheHookWhereItSpokeLast) {
    const struct {
        const char* name;
        const char* recorded;
        double age;
        SessionState expected;
    } rows[] = {
        {"asks for a permission", "waiting", 10, SessionState::waiting},
        {"asked before the turn began", "waiting", 60, SessionState::working},
        {"ended once, resumed", "dormant", 10, SessionState::working},
        {"subagents begun before the turn", "working", 60, SessionState::working},
        {"subagents at work", "done", 10, SessionState::waitingForSubagents},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        FleetHome fleet;
        fleet.writesRollout("c", 30, started, {{"cwd", nullptr}});
        fleet.records("c", row.recorded, row.age,
                      {{"agent", "codex"},
                       {"message", "May I?"},
                       {"tool", "shell"},
                       {"cwd", "/srv/demo"},
                       {"subagents", row.expected == SessionState::waiting ? 0 : 1}});
        const Session session = only(fleet.collect(), "c");
        EXPECT_EQ(session.state, row.expected);
        const bool isTheHooks = row.age < 30 && row.recorded != std::string("dormant");
        EXPECT_EQ(session.lastTool.has_value(), isTheHooks);
        EXPECT_EQ(session.lastMessage.has_value(), isTheHooks);
        EXPECT_EQ(session.cwd, "/srv/demo") << "which the rollout does not tell";
    }
}

TEST(CodexSessions, showTheirForksAndSubagents) {
    const auto fork = [](const char* parent) { return Json{{"forked_from_id", parent}}; };
    const auto subagent = [](const char* parent) {
        return Json{{"thread_source", "subagent"}, {"parent_thread_id", parent}};
    };
    FleetHome fleet;
    fleet.writesRollout("parent", 4000, answered);
    fleet.writesRollout("fork", 20, started, fork("parent"));
    fleet.writesRollout("helper", 10, started, subagent("fork"));
    fleet.writesRollout("done helper", 10, answered, subagent("fork"));
    fleet.writesRollout("orphan", 10, started, subagent("gone"));
    fleet.writesRollout("circle a", 10, started, fork("circle b"));
    fleet.writesRollout("circle b", 10, started, fork("circle a"));
    fleet.input.dormantMaxAge = Seconds(3600);
    for (const bool isPreview : {true, false}) {
        fleet.input.isPreview = isPreview;
        const auto collection = fleet.collect();
        EXPECT_THAT(ids(collection), ElementsAre("parent"));
        const Session parent = only(collection, "parent");
        EXPECT_TRUE(parent.isLive);
        EXPECT_EQ(parent.state, SessionState::waitingForSubagents);
        EXPECT_EQ(parent.subagentCount, 1);
        EXPECT_EQ(parent.lastActivityAt, fleet.now - Seconds(10));
        EXPECT_EQ(parent.turnStartedAt, fleet.now - Seconds(20));
    }
}

TEST(CodexSessions, giveEachProcessOneSessionOfItsFolder) {
    FleetHome fleet;
    fleet.writesRollout("newest", 100, answered);
    fleet.writesRollout("second", 200, answered);
    fleet.writesRollout("third", 300, answered);
    fleet.writesRollout("elsewhere", 50, answered, {{"cwd", "/srv"}});
    for (const std::int32_t pid : {7, 8}) {
        fleet.processes.processes[pid] = codex(fleet, 1000);
        fleet.processes.processes[pid].cwd = fleet.project;
    }
    const auto collection = fleet.collect();
    EXPECT_EQ(only(collection, "newest").pid, 7);
    EXPECT_EQ(only(collection, "second").pid, 8);
    EXPECT_FALSE(only(collection, "third").isLive);
    EXPECT_FALSE(only(collection, "elsewhere").isLive);
}

TEST(CodexSessions, pairProcessesAndSessionsOfAFolderByTheirStart) {
    FleetHome fleet;
    // One process after the other begins a session; none holds its rollout open.
    for (const auto& [id, pid, age] : {std::tuple("first", 7, 300.0), {"second", 8, 200.0}}) {
        fleet.writesRollout(id, age == 300 ? 100 : 150, answered,
                            {{"timestamp", internetDate(fleet.now - Seconds(age - 5))},
                             {"cwd", fleet.project + "/"}});
        fleet.processes.processes[pid] = codex(fleet, age);
        fleet.processes.processes[pid].cwd = fleet.project;
    }
    const auto collection = fleet.collect();
    EXPECT_EQ(only(collection, "first").pid, 7);
    EXPECT_EQ(only(collection, "second").pid, 8);
}

TEST(CodexSessions, stayLiveWhileTheHookTellsOfLife) {
    const struct {
        const char* name;
        const char* id;  ///< of the record
        const char* recorded;
        double age;
        SessionState expected;
    } rows[] = {
        {"asks since an hour", "c", "waiting", 3600, SessionState::waiting},
        {"asked yesterday", "c", "decision", 86'400, SessionState::dormant},
        {"works", "c", "working", 300, SessionState::working},
        {"worked", "c", "working", 301, SessionState::dormant},
        {"answered", "c", "done", 10, SessionState::dormant},
        {"its fork asks", "fork", "waiting", 3600, SessionState::waiting},
        {"its subagent asks", "helper", "waiting", 3600, SessionState::waiting},
        {"its subagent went on", "helper", "waiting", 7201, SessionState::dormant},
        {"its subagent works", "helper", "working", 10, SessionState::dormant},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        FleetHome fleet;
        fleet.input.dormantMaxAge = {};
        fleet.writesRollout("c", 100'000, aborted);
        fleet.writesRollout("fork", 90'000, aborted, {{"forked_from_id", "c"}});
        fleet.writesRollout("helper", 7200, started, {{"parent_thread_id", "fork"}});
        fleet.records(row.id, row.recorded, row.age, {{"agent", "codex"}, {"message", "May I?"}});
        const auto collection = fleet.collect();
        EXPECT_THAT(ids(collection), ElementsAre("c"));
        const Session session = only(collection, "c");
        EXPECT_EQ(session.state, row.expected);
        EXPECT_EQ(session.isLive, row.expected != SessionState::dormant);
    }
    FleetHome fleet;
    fleet.input.dormantMaxAge = Seconds(0);
    fleet.writesRollout("c", 4000, started);
    fleet.records("c", "waiting", 3600, {{"agent", "codex"}});
    EXPECT_EQ(only(fleet.collect(), "c").state, SessionState::waiting) << "no ended one is listed";
}

TEST(CodexSessions, areListedByAgeLikeAnyOther) {
    constexpr double day = 86'400;
    FleetHome fleet;
    fleet.writesRollout("month", 30 * day, answered);
    fleet.writesRollout("older", 30 * day + 1, answered);
    fleet.writesRollout("favourite", 90 * day, answered);
    fleet.writesRollout("open", 60 * day, answered);
    fleet.home.write("codex/sessions/rollout-2026-01-01T00-00-00-packed.jsonl.zst", "x");
    fleet.records("packed", "working", 5, {{"agent", "codex"}});
    fleet.processes.processes[7] = codex(fleet, 70 * day);
    fleet.processes.processes[7].openFiles = {"/rollout-2026-11-21T02-00-00-open.jsonl"};
    fleet.input.keepRegardlessOfAge = {"favourite"};

    const struct {
        const char* name;
        std::optional<Seconds> maxAge;
        std::vector<std::string> expected;
    } rows[] = {
        {"no limit", {}, {"month", "favourite", "open"}},
        {"a week", Seconds(7 * day), {"favourite", "open"}},
        {"none", Seconds(0), {"favourite", "open"}},
    };
    for (const auto& row : rows) {
        fleet.input.dormantMaxAge = row.maxAge;
        const auto collection = fleet.collect();
        EXPECT_THAT(ids(collection), UnorderedElementsAreArray(row.expected)) << row.name;
        EXPECT_EQ(collection.codexFiles.compressed, 1U);
    }
}

}  // namespace
}  // namespace fleetwise::testing
