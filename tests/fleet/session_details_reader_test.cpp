// What is read of one session on demand, from both agents' files.

#include "fleet/session_details_reader.h"

#include "foundation/json.h"
#include "sources/rollout_prompt.h"
#include "support/temporary_directory.h"

#include <gtest/gtest.h>

namespace fleetwise::testing {
namespace {

class SessionDetailsReaderTest : public ::testing::Test {
protected:
    SessionDetails read(const char* id, const char* agent = "claude") {
        Session session;
        session.id = id;
        session.agent = SessionAgent(agent);
        return SessionDetailsReader(transcripts, tasks, home.at("codex")).read(session);
    }

    TemporaryDirectory home;
    TranscriptReader transcripts{home.at("projects")};
    TaskListStore tasks{home.at("tasks")};
};

std::string said(const char* type, const std::string& text) {
    return Json{{"type", type},
                {"origin", {{"kind", "human"}}},
                {"message", {{"role", type}, {"content", {{{"type", "text"}, {"text", text}}}}}}}
               .dump() +
           "\n";
}

std::string event(const Json& payload) {
    return Json{{"type", "event_msg"}, {"payload", payload}}.dump() + "\n";
}

TEST_F(SessionDetailsReaderTest, readsWhatClaudeCodeLeaves) {
    const std::string path = home.write("projects/-srv/s.jsonl",
                                        said("user", "First") + said("assistant", "Yes.\n\nDone.") +
                                            said("user", std::string(5000, 'x')));
    home.write("tasks/s/10.json", R"({"subject":"Ten","status":"pending"})");
    home.write("tasks/s/2.json", R"({"subject":"Two","status":"in_progress"})");
    home.write("tasks/s/3.json", R"({"subject":"Gone","status":"deleted"})");
    const auto agent = [&](const char* name, const char* meta, double age) {
        const std::string folder = "projects/-srv/s/subagents/agent-";
        setModificationDate(home.write(folder + name + ".jsonl", "{}\n"),
                            dateFromSeconds(1'795'226'700 - age));
        home.write(folder + name + ".meta.json", meta);
    };
    agent("old", R"({"agentType":"Explore","description":"Look\naround","finished":true})", 60);
    agent("new", "not json", 5);
    home.write("projects/-srv/s/subagents/other.jsonl", "{}\n");

    const SessionDetails details = read("s");
    EXPECT_EQ(details.transcriptPath, path);
    EXPECT_EQ(details.message, "Yes.\n\nDone.");
    EXPECT_EQ(details.prompt.value_or("").size(), 3999 + std::string("…").size());
    using Status = TaskListStore::Status;
    EXPECT_EQ(details.tasks, (std::vector<SessionDetails::Task>{{"Two", Status::inProgress},
                                                                {"Ten", Status::pending}}));
    ASSERT_EQ(details.subagents.size(), 2U);
    EXPECT_EQ(details.subagents[0].description, "") << "the latest first, known or not";
    EXPECT_EQ(details.subagents[1].description, "Look around");
    EXPECT_TRUE(details.subagents[1].isFinished);
}

TEST_F(SessionDetailsReaderTest, readsWhatCodexLeaves) {
    const std::string head =
        Json{{"type", "session_meta"}, {"payload", {{"id", "c"}}}}.dump() + "\n";
    const Json typed{{"type", "item_completed"},
                     {"item",
                      {{"type", "UserMessage"},
                       {"content", {{{"type", "text"}, {"text", std::string(900, 'y')}}}}}}};
    const struct {
        const char* name;
        std::string lines;
        std::optional<std::string> prompt;
    } cases[]{
        {"the last of several",
         event({{"type", "user_message"}, {"message", "First"}}) + event(typed),
         std::string(900, 'y')},
        {"before a long turn",
         event({{"type", "user_message"}, {"message", "First"}}) +
             event({{"type", "x"}, {"text", std::string(rolloutPromptWindow, 'z')}}),
         "First"},
        {"none", event({{"type", "task_started"}}), std::nullopt},
    };
    for (const auto& each : cases) {
        const std::string path = home.write(
            "codex/sessions/2026/11/21/rollout-2026-11-21T02-00-00-c.jsonl", head + each.lines);
        const SessionDetails details = read("c", "codex");
        EXPECT_EQ(details.transcriptPath, path);
        EXPECT_EQ(details.prompt, each.prompt) << each.name;
    }
}

TEST_F(SessionDetailsReaderTest, isContentWithNothing) {
    home.makeFifo("codex/sessions/rollout-2026-11-21T02-00-00-f.jsonl");
    for (const char* agent : {"claude", "codex", "aider"}) {
        for (const char* id : {"f", "../s", ""})
            EXPECT_EQ(read(id, agent), SessionDetails()) << agent << id;
    }
}

}  // namespace
}  // namespace fleetwise::testing
