#include "fleet/archive_reader.h"

#include "fleet/fleet_home.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <map>

namespace fleetwise::testing {
namespace {

class ArchiveReaderTest : public FleetHome, public ::testing::Test {
protected:
    ArchiveReader reader() {
        return {{.projectsDirectory = home.at("projects"),
                 .desktopDirectory = home.at("desktop"),
                 .codexDirectory = home.at("codex"),
                 .promptHistoryFile = home.at("history.jsonl"),
                 .titlesFile = home.at("archive-index.json")},
                desktopStore};
    }

    static std::map<std::string, ArchiveEntry> byId(std::vector<ArchiveEntry> entries) {
        std::map<std::string, ArchiveEntry> sorted;
        for (ArchiveEntry& entry : entries) {
            const std::string id = entry.id;
            EXPECT_TRUE(sorted.emplace(id, std::move(entry)).second) << id;
        }
        return sorted;
    }

    /// What a reader has to say once it has read everything.
    std::map<std::string, ArchiveEntry> all(ArchiveReader& archive) const {
        return byId(archive.complete(archive.list(now), now));
    }

    void types(const std::string& id, const std::string& text) const {
        home.append("history.jsonl", Json{{"display", text},
                                          {"pastedContents", Json::object()},
                                          {"timestamp", 1'795'226'000'000},
                                          {"project", "/srv/typed"},
                                          {"sessionId", id}}
                                             .dump() +
                                         "\n");
    }

    static std::string title(const std::string& text) {
        return Json{{"type", "custom-title"}, {"customTitle", text}}.dump() + "\n";
    }

    DesktopMetadataStore desktopStore;
};

TEST_F(ArchiveReaderTest, listsWhatBothAgentsHaveLeft) {
    writesTranscript("old", 90 * 86'400.0, prompt("Rename  the\nbilling module"));
    writesTranscript("app", 60, prompt("in the app") + title("of the file"));
    describesInDesktop("app", {{"title", "Of the app"},
                               {"model", "claude-opus-5-5"},
                               {"cwd", "/srv/app"},
                               {"isArchived", true}});
    describesInDesktop("lost", {{"title", "Only metadata"}, {"lastActivityAt", 1'795'000'000'000}});
    writesRollout("c1", 400 * 86'400.0, {{"user_message", {{"message", "Fix the build"}}}},
                  {{"originator", "Codex Desktop"}});
    writesRollout("c2", 30, {}, {{"source", {{"subagent", "review"}}}});
    home.write("codex/sessions/2026/01/02/rollout-2026-01-02T03-04-05-packed.jsonl.zst", "(zstd)");
    home.write("codex/session_index.jsonl", R"({"id":"c1","thread_name":"Build"})"
                                            "\n");
    home.makeLink("projects/-srv-demo/link.jsonl", home.at("projects/-srv-demo/old.jsonl"));

    ArchiveReader archive = reader();
    const auto entries = all(archive);
    ASSERT_EQ(entries.size(), 5U) << "neither the link nor the subagent";
    const ArchiveEntry& old = entries.at("old");
    EXPECT_EQ(old.displayName(), "Rename the billing module");
    EXPECT_EQ(old.cwd, "/srv/demo");
    EXPECT_EQ(old.origin, SessionOrigin::cli);
    EXPECT_EQ(old.sizeBytes, std::filesystem::file_size(old.path));
    const ArchiveEntry& app = entries.at("app");
    EXPECT_EQ(app.title, "Of the app");
    EXPECT_EQ(app.cwd, "/srv/app");
    EXPECT_EQ(app.origin, SessionOrigin::desktop);
    EXPECT_EQ(app.model, "claude-opus-5-5");
    EXPECT_EQ(entries.at("lost").lastActivityAt, dateFromSeconds(1'795'000'000));
    const ArchiveEntry& codex = entries.at("c1");
    EXPECT_TRUE(codex.agent.isCodex());
    EXPECT_EQ(codex.title, "Build");
    EXPECT_EQ(codex.prompt, "Fix the build");
    EXPECT_EQ(codex.origin, SessionOrigin::desktop);
    EXPECT_TRUE(entries.at("packed").agent.isCodex());
}

TEST_F(ArchiveReaderTest, opensNoSessionFileThatItKnows) {
    writesTranscript("a", 60, prompt("first") + title("Named"));
    writesRollout("s", 30, {}, {{"source", {{"subagent", "review"}}}});
    types("b", "never begun");
    {
        ArchiveReader first = reader();
        const auto listed = byId(first.list(now));
        EXPECT_FALSE(listed.at("a").isComplete);
        all(first);
        first.flush();
    }
    const auto before = readCounts();
    ArchiveReader second = reader();
    const auto listed = byId(second.list(now));
    EXPECT_EQ(readCounts().opens - before.opens, 2U) << "the titles and the prompt history";
    ASSERT_EQ(listed.size(), 1U) << "the subagent stays out";
    EXPECT_TRUE(listed.at("a").isComplete);
    EXPECT_EQ(listed.at("a").title, "Named");

    home.append("projects/-srv-demo/a.jsonl", title("Renamed"));
    EXPECT_EQ(byId(second.list(now)).at("a").title, "Named") << "better than none";
    EXPECT_EQ(all(second).at("a").title, "Renamed");

    std::filesystem::remove(home.at("projects/-srv-demo/a.jsonl"));
    EXPECT_TRUE(second.list(now).empty());
    second.flush();
    EXPECT_EQ(contentsOf(home.at("archive-index.json")).find("a.jsonl"), std::string::npos);
}

TEST_F(ArchiveReaderTest, startsAnewWhereItsOwnFileIsDamaged) {
    writesTranscript("a", 60, prompt("first"));
    ArchiveReader archive = reader();
    all(archive);
    archive.flush();
    const std::string whole = contentsOf(home.at("archive-index.json"));
    for (std::size_t size = 0; size < whole.size(); ++size) {
        ASSERT_FALSE(decodeArchiveTitles(whole.substr(0, size))) << size;
    }
    for (const char* damaged :
         {"[]", R"({"version":2,"files":{}})", R"({"version":1,"files":{"p":{"size":1}}})",
          R"({"version":1,"files":{"p":{"modified":1,"size":1,"title":7}}})"}) {
        home.write("archive-index.json", damaged);
        ArchiveReader next = reader();
        EXPECT_FALSE(byId(next.list(now)).at("a").isComplete) << damaged;
    }
    std::filesystem::remove(home.at("archive-index.json"));
    home.makeFifo("archive-index.json");
    ArchiveReader blocked = reader();
    EXPECT_EQ(blocked.list(now).size(), 1U);
}

TEST_F(ArchiveReaderTest, showsTypedPromptsUntilTheFileIsRead) {
    writesTranscript("a", 60, prompt("asked in the file"));
    types("a", "earlier");
    types("a", "typed\nlast");
    types("a", "/exit");
    home.append("history.jsonl", R"({"display":"unfinished","sessionId":"a")");
    ArchiveReader archive = reader();
    const auto listed = byId(archive.list(now));
    EXPECT_EQ(listed.at("a").prompt, "typed last");
    EXPECT_EQ(listed.at("a").cwd, "/srv/typed");
    EXPECT_EQ(all(archive).at("a").prompt, "asked in the file");
}

TEST_F(ArchiveReaderTest, listsASessionOnceWithItsForksAndCopies) {
    writesRollout("s", 9000, {{"user_message", {{"message", "Fix the build"}}}});
    writesRollout("f", 600, {}, {{"forked_from_id", "s"}});
    writesRollout("g", 30, {}, {{"forked_from_id", "f"}});
    writesRollout("orphan", 30, {}, {{"forked_from_id", "gone"}});
    const std::string older =
        home.write("codex/sessions/2026/11/20/rollout-2026-11-20T02-00-00-s.jsonl", "(of before)");
    setModificationDate(older, now - Seconds(90'000));
    ArchiveReader archive = reader();
    EXPECT_EQ(all(archive).size(), 2U);
    const auto listed = byId(archive.list(now));
    ASSERT_EQ(listed.size(), 2U);
    EXPECT_EQ(listed.at("s").prompt, "Fix the build");
    EXPECT_EQ(listed.at("s").lastActivityAt, listed.at("orphan").lastActivityAt);
}

TEST(PromptHistory, passesOverWhatIsNoPrompt) {
    const auto prompts = PromptHistory::parse(
        "{\"display\":\"no session\"}\n[]\n\n{\"display\":7,\"sessionId\":\"x\"}\n"
        "{\"display\":\"text\",\"sessionId\":\"y\",\"project\":null}\n\xFF\n"
        "{\"display\":\"half \\ud83d\",\"sessionId\":\"z\"}\n"
        "{\"display\":\"cut off\",\"sessionId\":\"w\"}");
    EXPECT_EQ(prompts.size(), 2U);
    EXPECT_EQ(prompts.at("y"), (TypedPrompt{.text = "text", .cwd = ""}));
    EXPECT_TRUE(prompts.contains("z"));
}

}  // namespace
}  // namespace fleetwise::testing
