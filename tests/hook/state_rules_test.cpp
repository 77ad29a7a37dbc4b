// What happens in the field beyond the recordings: events that overtake each other, come twice or
// not at all, several agents that ask at once, answers of which no event tells.

#include "foundation/json.h"
#include "hook_replay.h"

#include <gtest/gtest.h>

#include <vector>

namespace fleetwise::testing {
namespace {

struct Event {
    double at = 0;  ///< when its hook began; the hooks get their turn in the order of the list
    const char* name = "";
    const char* payload = "{}";
};

struct Row {
    const char* name;
    std::vector<Event> events;
    const char* shown;  ///< after the last of them
};

constexpr double start = 1795226700;
constexpr const char* session = "s1";

std::string shownAfter(const std::vector<Event>& events) {
    HookReplay replay;
    for (const Event& event : events) {
        Json payload = Json::parse(event.payload);
        payload["session_id"] = session;
        replay.apply(event.name, payload.dump(), start + event.at);
    }
    return replay.describe(session);
}

void check(const std::vector<Row>& rows) {
    for (const Row& row : rows)
        EXPECT_EQ(shownAfter(row.events), row.shown) << row.name;
}

constexpr const char* bash = R"({"tool_name":"Bash","tool_input":{"command":"make"}})";
constexpr const char* read = R"({"tool_name":"Read","tool_input":{"file_path":"/a/b.c"}})";
constexpr const char* longRead =
    R"({"tool_name":"Read","tool_input":{"file_path":"/a/b.c"},"duration_ms":9000})";
constexpr const char* shortRead =
    R"({"tool_name":"Read","tool_input":{"file_path":"/a/b.c"},"duration_ms":10})";
constexpr const char* shortBash =
    R"({"tool_name":"Bash","tool_input":{"command":"make"},"duration_ms":10})";
constexpr const char* agentA = R"({"agent_id":"A"})";
constexpr const char* agentB = R"({"agent_id":"B"})";
constexpr const char* bashOfA =
    R"({"agent_id":"A","tool_name":"Bash","tool_input":{"command":"ls"},"duration_ms":10})";
constexpr const char* bashOfB =
    R"({"agent_id":"B","tool_name":"Bash","tool_input":{"command":"pwd"},"duration_ms":10})";
constexpr const char* runningA =
    R"({"background_tasks":[{"id":"A","type":"subagent","status":"running"},
        {"id":"C","type":"subagent","status":"completed"}]})";
constexpr const char* nothingRuns = R"({"background_tasks":[],"last_assistant_message":"Hi"})";

TEST(StateRules, letNoLateEventChangeTheState) {
    check({
        {"tool before prompt's hook",
         {{2, "PreToolUse", bash}, {1, "UserPromptSubmit"}},
         "working 0 | tool: Bash | does: make"},
        {"tool's end after Stop",
         {{0, "UserPromptSubmit"}, {2, "Stop", nothingRuns}, {1, "PostToolUse", bash}},
         "done 0 | says: Hi"},
        {"launch after Stop still counts",
         {{0, "UserPromptSubmit"},
          {2, "Stop"},
          {1, "PostToolUse",
           R"({"tool_name":"Bash","tool_input":{"command":"make"},
               "tool_response":{"backgroundTaskId":"b1"}})"}},
         "done 0 | runs: make"},
        {"subagent's start after Stop still counts",
         {{0, "UserPromptSubmit"}, {2, "Stop"}, {1, "SubagentStart", agentA}},
         "done 1"},
        {"Stop overtaken by a subagent's tool",
         {{0, "UserPromptSubmit"}, {2, "PreToolUse", bashOfA}, {1, "Stop"}},
         "done 0 | tool: Bash | does: ls"},
        {"end overtaken by the resumed session's start",
         {{0, "Stop"}, {2, "SessionStart", R"({"source":"resume"})"}, {1, "SessionEnd"}},
         "idle 0"},
        {"failure after the end",
         {{0, "UserPromptSubmit"}, {1, "SessionEnd"}, {2, "StopFailure"}},
         "dormant 0"},
        {"tool after the end", {{1, "SessionEnd"}, {2, "PreToolUse", bash}}, "dormant 0"},
        {"clock set back", {{0, "Stop"}, {-3600, "UserPromptSubmit"}}, "working 0"},
        {"clock set back a little", {{0, "Stop"}, {-12, "UserPromptSubmit"}}, "working 0"},
        {"end of compaction before its start of session",
         {{0, "UserPromptSubmit"},
          {1, "PreCompact", R"({"trigger":"auto"})"},
          {2, "PostCompact", R"({"trigger":"auto"})"},
          {3, "SessionStart", R"({"source":"compact"})"}},
         "working 0"},
    });
}

TEST(StateRules, bearRepeatedAndMissingEvents) {
    check({
        {"started twice",
         {{0, "UserPromptSubmit"}, {1, "SubagentStart", agentA}, {2, "SubagentStart", agentA}},
         "working 1"},
        {"stopped twice",
         {{0, "UserPromptSubmit"},
          {1, "SubagentStart", agentA},
          {2, "SubagentStart", agentB},
          {3, "SubagentStop", agentA},
          {4, "SubagentStop", agentA}},
         "working 1"},
        {"killed subagent is off the list at Stop",
         {{0, "UserPromptSubmit"}, {1, "SubagentStart", agentA}, {2, "Stop", nothingRuns}},
         "done 0 | says: Hi"},
        {"subagents of an interrupted turn do not count in the next",
         {{0, "UserPromptSubmit"}, {1, "SubagentStart", agentA}, {9, "UserPromptSubmit"}},
         "working 0"},
        {"only running subagents are listed", {{0, "Stop", runningA}}, "done 1"},
        {"helper that was never counted, within a turn",
         {{0, "UserPromptSubmit"}, {1, "SubagentStop", agentA}},
         "working 0"},
        {"helper that was never counted, after it",
         {{0, "Stop"}, {1, "SubagentStop", agentA}},
         "done 0"},
        {"failure outlives its subagents",
         {{0, "UserPromptSubmit"},
          {1, "SubagentStart", agentA},
          {2, "StopFailure", R"({"error":"rate_limit","last_assistant_message":"Limit"})"},
          {3, "SubagentStop", agentA}},
         "failed 0 | says: Limit"},
        {"failure of a subagent",
         {{0, "UserPromptSubmit"}, {1, "Stop", runningA}, {2, "StopFailure", agentA}},
         "done 1"},
        {"compaction of a subagent",
         {{0, "UserPromptSubmit"}, {1, "StopFailure"}, {2, "PostCompact", agentA}},
         "failed 0"},
        {"prompt told twice keeps what runs",
         {{0, "Stop", runningA}, {5, "UserPromptSubmit"}, {5.01, "UserPromptSubmit"}},
         "working 1"},
        {"subagent of an interrupted turn ends",
         {{0, "UserPromptSubmit"},
          {1, "SubagentStart", agentA},
          {2, "PostToolUseFailure", R"({"is_interrupt":true})"},
          {3, "SubagentStop", agentA}},
         "idle 0"},
        {"subagent after the end",
         {{0, "UserPromptSubmit"}, {1, "SessionEnd"}, {2, "SubagentStart", agentA}},
         "dormant 0"},
        {"state through the last subagent stays when others report",
         {{0, "UserPromptSubmit"},
          {1, "Stop", runningA},
          {2, "SubagentStop", agentA},
          {3, "PostToolUse", bashOfA},
          {4, "Notification", R"({"notification_type":"agent_completed"})"}},
         "done 0"},
        {"first event is a subagent's tool", {{0, "PreToolUse", bashOfA}}, "no file"},
        {"unknown event", {{0, "WorktreeCreate"}}, "no file"},
        {"task that ended by notification",
         {{0, "Stop",
           R"({"background_tasks":[
              {"id":"b1","type":"shell","status":"running","command":"make"},
              {"id":"b2","type":"shell","status":"running","description":"Build"}]})"},
          {1, "UserPromptSubmit",
           R"({"prompt":"<task-notification>\n<task-id>b1</task-id>\n<status>killed</status>"})"}},
         "working 0 | runs: Build"},
        {"interrupted tool",
         {{0, "UserPromptSubmit"}, {1, "PostToolUseFailure", R"({"is_interrupt":true})"}},
         "idle 0"},
        {"idle after an answer of subagents",
         {{0, "UserPromptSubmit"},
          {1, "SubagentStart", agentA},
          {2, "SubagentStart", agentB},
          {3, "Stop"},
          {4, "SubagentStop", agentA},
          {60, "Notification", R"({"notification_type":"idle_prompt","message":"waits"})"}},
         "working 1"},
        {"idle without an answer",
         {{0, "UserPromptSubmit"}, {60, "Notification", R"({"message":"is waiting for you"})"}},
         "waiting 0 | says: is waiting for you"},
    });
}

TEST(StateRules, keepEachQuestionUntilItIsAnswered) {
    const Event prompt{0, "UserPromptSubmit"};
    const Event ask{10, "PermissionRequest", bash};
    constexpr const char* asked = "waiting 0 | says: Bash: make";
    check({
        {"a tool beside it ends", {prompt, ask, {11, "PostToolUse", longRead}}, asked},
        {"a tool beside it starts",
         {prompt, ask, {12, "PreToolUse", read}},
         "waiting 0 | says: Bash: make | tool: Read | does: b.c"},
        {"approved", {prompt, ask, {10.5, "PostToolUse", shortBash}}, "working 0"},
        {"refused, the agent goes on", {prompt, ask, {20, "PostToolUse", shortRead}}, "working 0"},
        {"no time given", {prompt, ask, {20, "PostToolUse", read}}, "working 0"},
        {"a subagent's tool ends", {prompt, ask, {20, "PostToolUse", bashOfA}}, asked},
        {"the next prompt", {prompt, ask, {20, "UserPromptSubmit"}}, "working 0"},
        {"everything told twice",
         {prompt, prompt, ask, ask, {20, "PostToolUse", shortBash}, {20, "PostToolUse", shortBash}},
         "working 0"},
        {"two tools ask, one is answered",
         {prompt, ask, {10, "PermissionRequest", read}, {20, "PostToolUse", shortRead}},
         asked},
        {"the same asked twice, one is answered",
         {prompt, ask, {10, "PermissionRequest", bash}, {20, "PostToolUse", shortBash}},
         asked},
        {"answered before a subagent's question gets its turn",
         {prompt,
          {1, "SubagentStart", agentA},
          {1, "SubagentStart", agentB},
          {2, "PermissionRequest", bashOfA},
          {5.005, "PermissionRequest", bashOfB},
          {5, "PostToolUse", bashOfA},
          {6, "PostToolUse", bashOfB}},
         "working 2"},
        {"asked before a tool beside it begins",
         {prompt, {10.1, "PreToolUse", read}, ask},
         "waiting 0 | says: Bash: make | tool: Read | does: b.c"},
        {"the first event of the session",
         {{2, "PermissionRequest", bashOfA}, {3, "PostToolUse", bashOfA}},
         "working 0"},
        {"of a subagent that was killed",
         {prompt,
          {1, "SubagentStart", agentA},
          {2, "PermissionRequest", bashOfA},
          {3, "Stop", runningA},
          {4, "UserPromptSubmit",
           R"({"prompt":"<task-notification><task-id>A</task-id><status>killed</status>"})"}},
         "working 0"},
        {"hides no failure's text for good",
         {prompt,
          {1, "SubagentStart", agentA},
          {2, "StopFailure", R"({"error":"rate_limit","last_assistant_message":"Limit"})"},
          {3, "PermissionRequest", bashOfA},
          {4, "PostToolUse", bashOfA}},
         "failed 1 | says: Limit"},
        {"subagent asks while the session goes on",
         {prompt,
          {1, "SubagentStart", agentA},
          {2, "PermissionRequest", bashOfA},
          {3, "PostToolUse", shortRead},
          {4, "Stop", runningA}},
         "waiting 1 | says: Bash: ls"},
        {"and is answered after the session's answer",
         {prompt,
          {1, "SubagentStart", agentA},
          {2, "PermissionRequest", bashOfA},
          {4, "Stop", runningA},
          {5, "PostToolUse", bashOfA}},
         "done 1"},
        {"and is gone",
         {prompt,
          {1, "SubagentStart", agentA},
          {2, "PermissionRequest", bashOfA},
          {4, "SubagentStop", agentA}},
         "working 0"},
        {"two subagents ask, one is answered",
         {prompt,
          {1, "SubagentStart", agentA},
          {1, "SubagentStart", agentB},
          {2, "PermissionRequest", bashOfA},
          {3, "PermissionRequest", bashOfB},
          {4, "PostToolUse", bashOfB}},
         "waiting 2 | says: Bash: ls"},
        {"reported only by its notice",
         {prompt,
          {6, "Notification", R"({"notification_type":"permission_prompt","message":"?"})"}},
         "waiting 0 | says: ?"},
        {"plan",
         {prompt,
          {1, "PermissionRequest",
           R"({"tool_name":"ExitPlanMode","tool_input":{"plan":"\n## Move house\n1. Pack"}})"}},
         "decision 0 | says: Move house"},
        {"form of a server",
         {prompt,
          {1, "Elicitation", R"({"message":"Which account?"})"},
          {2, "Notification", R"({"notification_type":"elicitation_dialog","message":"form"})"}},
         "decision 0 | says: Which account?"},
        {"form, and a tool beside its server's",
         {prompt, {1, "Elicitation", R"({"message":"Which?"})"}, {3, "PostToolUse", longRead}},
         "decision 0 | says: Which?"},
        {"form filled in",
         {prompt,
          {1, "Elicitation", R"({"message":"Which account?"})"},
          {2, "Notification", R"({"notification_type":"elicitation_response"})"}},
         "working 0"},
    });
}

TEST(StateRules, nameWhatATool) {
    const struct {
        const char* tool;
        const char* input;
        const char* activity;
    } rows[] = {
        {"Bash", R"({"command":"\n make -j\nmake test"})", "make -j"},
        {"Bash", R"({"command":"make","description":"Build it"})", "Build it"},
        {"NotebookEdit", R"({"notebook_path":"/a/n.ipynb"})", "n.ipynb"},
        {"Grep", R"({"pattern":"main","path":"src"})", "main"},
        {"WebFetch", R"({"url":"https://me@docs.example.org:8080/a?b"})", "docs.example.org:8080"},
        {"Agent", R"({"description":"Look around","prompt":"…"})", "Look around"},
        {"Read", R"({"file_path":7})", "Read"},
        {"mcp__mail__send", R"({"description":"secret"})", "mcp__mail__send"},
    };
    for (const auto& row : rows) {
        HookReplay replay;
        const Json payload{{"session_id", session},
                           {"tool_name", row.tool},
                           {"tool_input", Json::parse(row.input)}};
        replay.apply("PreToolUse", payload.dump(), start);
        EXPECT_EQ(replay.record(session)->activity, row.activity) << row.input;
    }
}

TEST(StateRules, keepTimesAndSurroundings) {
    HookReplay replay;
    const auto apply = [&](const char* event, const char* payload, double at) {
        Json body = Json::parse(payload);
        body["session_id"] = session;
        replay.apply(event, body.dump(), start + at);
    };
    apply("UserPromptSubmit", R"({"cwd":"/work","permission_mode":"plan"})", 1);
    apply("PreToolUse", R"({"agent_id":"A","cwd":"/elsewhere","permission_mode":"auto"})", 2);
    apply("Stop", "{}", 3);
    apply("Stop", "{}", 4);  // the hook may be registered twice
    const auto record = replay.record(session);
    ASSERT_TRUE(record);
    EXPECT_EQ(record->cwd, "/work");
    EXPECT_EQ(record->permissionMode, "plan");
    EXPECT_EQ(record->turnStartedAt, dateFromSeconds(start + 1));
    EXPECT_EQ(record->doneAt, dateFromSeconds(start + 3));
    EXPECT_EQ(record->eventTs, dateFromSeconds(start + 4));
}

TEST(StateRules, dateWhatIsShown) {
    HookReplay replay;
    const auto shownSince = [&](const Event& event) {
        Json payload = Json::parse(event.payload);
        payload["session_id"] = session;
        replay.apply(event.name, payload.dump(), start + event.at);
        return secondsSince1970(*replay.record(session)->stateTs) - start;
    };
    EXPECT_EQ(shownSince({1, "UserPromptSubmit"}), 1);
    EXPECT_EQ(shownSince({2, "PreToolUse", bashOfA}), 1) << "a subagent's tool decides nothing";
    EXPECT_EQ(shownSince({3, "PermissionRequest", bashOfA}), 3);
    EXPECT_EQ(shownSince({4, "PreToolUse", bash}), 3) << "the question is as old as it was";
    EXPECT_EQ(shownSince({5, "PermissionRequest", bashOfB}), 5);
    EXPECT_EQ(shownSince({6, "PostToolUse", bashOfB}), 3) << "the first one is shown again";
    EXPECT_EQ(shownSince({7, "PostToolUse", bashOfA}), 7);
}

}  // namespace
}  // namespace fleetwise::testing
