#include "sources/session_history.h"

#include "foundation/regular_file.h"
#include "sources/project_folder.h"
#include "support/temporary_directory.h"

#include <gmock/gmock.h>

namespace fleetwise::testing {
namespace {

using namespace std::chrono_literals;
using ::testing::ElementsAre;

const Date now = *parseInternetDate("2026-11-21T02:00:00.000Z");

TEST(ProjectFolder, isNamedAsTheAgentNamesIt) {
    const struct {
        const char* cwd;
        const char* name;
    } rows[] = {
        {"/home/dev/work/ümlaut-Ärger", "-home-dev-work--mlaut--rger"},
        {"/home/dev/work/My_Proj.v2 (x)", "-home-dev-work-My-Proj-v2--x-"},
        {"/a/\U0001F600b", "-a---b"},
        {"/a/\xff\xc3z", "-a---z"},
        {"", ""},
    };
    for (const auto& row : rows)
        EXPECT_EQ(projectFolderName(row.cwd), row.name) << row.cwd;
}

TEST(SessionHistory, listsTranscriptsAndOpensNone) {
    const TemporaryDirectory projects;
    const std::string older = projects.write("-a/twice.jsonl", "older");
    const std::string newer = projects.write("-b/twice.jsonl", "newer");
    const std::string plain = projects.write("-b/plain.jsonl", "{}");
    projects.write("-b/empty.jsonl", "");
    setModificationDate(older, now - 2h);
    setModificationDate(newer, now - 1h);
    projects.write("-b/agent-1f2e.jsonl", "{}");
    projects.write("-b/plain/subagents/agent-3d.jsonl", "{}");
    projects.write("-b/notes.txt", "");
    projects.write("-b/.jsonl", "");
    projects.write("stray.jsonl", "");
    projects.makeDirectory("-b/folder.jsonl");
    projects.makeLink("-b/link.jsonl", plain);
    projects.makeFifo("-b/fifo.jsonl");
    projects.makeLink("-linked", projects.at("-a"));

    const ReadCounts before = readCounts();
    SkipTally skipped;
    const TranscriptIndex index = SessionHistory::transcripts(projects.path(), skipped);
    EXPECT_EQ(readCounts().opens, before.opens);
    ASSERT_THAT(index,
                ::testing::UnorderedElementsAre(::testing::Key("twice"), ::testing::Key("plain")));
    EXPECT_EQ(index.at("twice").path, newer);
    EXPECT_EQ(modificationDate(index.at("twice").stamp), now - 1h);
    EXPECT_EQ(skipped, (SkipTally{.notRegular = 4, .malformed = 1}));
    EXPECT_TRUE(SessionHistory::transcripts(projects.at("missing"), skipped).empty());
}

TranscriptFile transcript(Date modified) {
    const auto nanoseconds = static_cast<std::int64_t>(secondsSince1970(modified)) * 1'000'000'000;
    return {.path = "/p/x.jsonl", .stamp = {.modifiedNanoseconds = nanoseconds, .sizeBytes = 1}};
}

TEST(SessionHistory, selectsByAgeAndWish) {
    const TranscriptIndex transcripts{{"hour", transcript(now - 1h)},
                                      {"week", transcript(now - 7 * 24h)},
                                      {"future", transcript(now + 1h)},
                                      {"desktop both", transcript(now - 3h)},
                                      {"archived", transcript(now - 1h)}};
    const DesktopSessions desktop{
        {"desktop both", {.lastActivityAt = now - 48h}},
        {"desktop", {.lastActivityAt = now - 2h}},
        {"desktop undated", {}},
        {"archived", {.lastActivityAt = now - 1h, .isArchived = true}},
    };
    const struct {
        const char* name;
        std::optional<Seconds> maxAge;
        std::set<std::string> always;
        std::vector<std::string> ids;
    } rows[] = {
        {"a day", 24h, {}, {"future", "hour", "desktop", "desktop both"}},
        {"all", {}, {}, {"future", "hour", "desktop", "desktop both", "week", "desktop undated"}},
        {"none", 0s, {}, {}},
        {"none but favourites", 0s, {"week", "archived", "gone"}, {"archived", "week"}},
        {"favourite within the limit", 2h, {"hour"}, {"future", "hour", "desktop"}},
        {"to the second", 1h, {}, {"future", "hour"}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        std::vector<std::string> ids;
        for (const auto& candidate :
             SessionHistory::candidates(row.maxAge, desktop, row.always, transcripts, now)) {
            ids.push_back(candidate.sessionId);
        }
        EXPECT_EQ(ids, row.ids);
    }
}

TEST(SessionHistory, mergesTranscriptAndMetadata) {
    const TranscriptFile file = transcript(now - 1h);
    const auto found = SessionHistory::candidates(24h,
                                                  {{"b",
                                                    {.title = "Title",
                                                     .cwd = "/w",
                                                     .model = "m",
                                                     .effort = "high",
                                                     .lastActivityAt = now - 2h}}},
                                                  {}, {{"a", file}, {"b", file}}, now);
    EXPECT_THAT(found, ElementsAre(SessionHistory::Candidate{.sessionId = "a",
                                                             .cwd = {},
                                                             .title = {},
                                                             .model = {},
                                                             .effort = {},
                                                             .lastActivityAt = now - 1h,
                                                             .origin = SessionOrigin::cli,
                                                             .transcript = file},
                                   SessionHistory::Candidate{.sessionId = "b",
                                                             .cwd = "/w",
                                                             .title = "Title",
                                                             .model = "m",
                                                             .effort = "high",
                                                             .lastActivityAt = now - 1h,
                                                             .origin = SessionOrigin::desktop,
                                                             .transcript = file}));
}

}  // namespace
}  // namespace fleetwise::testing
