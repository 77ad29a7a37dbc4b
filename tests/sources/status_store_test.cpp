#include "sources/status_store.h"

#include "foundation/regular_file.h"
#include "support/temporary_directory.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <thread>

namespace fleetwise::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Key;
using ::testing::UnorderedElementsAre;
using Record = StatusStore::Record;
using Watch = StatusStore::Watch;

const Date now = dateFromSeconds(1'795'226'675);

std::optional<Record> decoded(const std::string& text) {
    return StatusStore::decode(padded(text));
}

/// A status file with the given further members, such as R"("subagents":2)".
std::string statusFile(const std::string& members) {
    return R"({"session_id":"s","state":"working","ts":1795226675.25,)" + members + "}";
}

StatusStore::Records load(const TemporaryDirectory& folder) {
    SkipTally skipped;
    return StatusStore::load(folder.path(), skipped);
}

TEST(StatusRecord, holdsEveryKey) {
    const auto record = decoded(
        R"({"session_id":"id","state":"waiting","event":"PermissionRequest","agent":"claude",
            "tool":"Bash","activity":"Küche","message":"Erlauben?","cwd":"/w","ts":100.5,
            "event_ts":100,"permission_mode":"plan","turn_started_at":90,"done_at":80.25,
            "subagents":2.0,"background":{"b":{"cmd":"make","at":70},"c":{}},
            "monitors":{"m":["Pipeline",300]},"wakeup_at":1e3,"state_ts":99,
           "requests":{"new":[1]}})");
    Record expected{.sessionId = "id",
                    .state = "waiting",
                    .event = "PermissionRequest",
                    .agent = "claude",
                    .tool = "Bash",
                    .activity = "Küche",
                    .message = "Erlauben?",
                    .cwd = "/w",
                    .ts = dateFromSeconds(100.5),
                    .eventTs = dateFromSeconds(100),
                    .permissionMode = "plan",
                    .turnStartedAt = dateFromSeconds(90),
                    .doneAt = dateFromSeconds(80.25),
                    .subagents = 2,
                    .background = {{"b", {.cmd = "make", .at = dateFromSeconds(70)}}, {"c", {}}},
                    .monitors = {{"m", {"Pipeline", 300.0}}},
                    .wakeupAt = dateFromSeconds(1000),
                    .stateTs = dateFromSeconds(99)};
    EXPECT_EQ(record, expected);
}

TEST(StatusRecord, isStrictAboutTheKeysItKnows) {
    const struct {
        const char* name;
        std::string text;
        bool isRecord;
    } rows[] = {
        {"null is absent", statusFile(R"("event":null,"subagents":null,"monitors":null)"), true},
        {"no session", R"({"state":"done","ts":1})", false},
        {"no time", R"({"session_id":"s","state":"done"})", false},
        {"empty session", R"({"session_id":"","state":"done","ts":1})", false},
        {"text for a time", R"({"session_id":"s","state":"done","ts":"1"})", false},
        {"number for a text", statusFile(R"("tool":3)"), false},
        {"object for a text", statusFile(R"("cwd":{"a":[1,2]},"tool":"Bash")"), false},
        {"time out of range", statusFile(R"("event_ts":1e999)"), false},
        {"launches in a list", statusFile(R"("background":[])"), false},
        {"launch that is a text", statusFile(R"("background":{"a":"make"})"), false},
        {"launch with a wrong time", statusFile(R"("background":{"a":{"at":"1"}})"), false},
        {"watch that is no list", statusFile(R"("monitors":{"a":{"label":1}})"), false},
        {"no JSON", "kein JSON", false},
        {"deep unknown member",
         statusFile("\"x\":" + std::string(900, '[') + std::string(900, ']')), true},
        {"comma missing", statusFile(R"("x":1 "tool":"Bash")"), false},
        {"two objects", statusFile(R"("tool":"Bash")") + "{}", false},
    };
    for (const auto& row : rows)
        EXPECT_EQ(decoded(row.text).has_value(), row.isRecord) << row.name;
}

TEST(StatusRecord, isNeverMadeOfATornFile) {
    const std::string whole = statusFile(
        R"("activity":"Küche \"1\"","background":{"a":{"cmd":"x","at":1}},"monitors":{"m":["P",3]})");
    ASSERT_TRUE(decoded(whole));
    for (std::size_t length = 0; length < whole.size(); ++length) {
        EXPECT_FALSE(decoded(whole.substr(0, length))) << length;
    }
}

TEST(StatusState, isRepairedWhereTheLastSubagentStopped) {
    const struct {
        const char* name;
        const char* state;
        std::optional<std::string> event;
        std::optional<std::int64_t> subagents;
        SessionState expected;
    } rows[] = {
        {"count absent", "working", "SubagentStop", {}, SessionState::done},
        {"none left", "working", "SubagentStop", 0, SessionState::done},
        {"two left", "working", "SubagentStop", 2, SessionState::working},
        {"another event", "working", "PostToolUse", 0, SessionState::working},
        {"another state", "waiting", "SubagentStop", 0, SessionState::waiting},
        {"unknown state", "Working", "SubagentStop", 0, SessionState::unknown},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(StatusStore::repairedState(row.state, row.event, row.subagents), row.expected)
            << row.name;
    }
}

TEST(StatusWatches, comeOldestFirst) {
    EXPECT_THAT(StatusStore::watches(nullptr), IsEmpty());
    const auto record = decoded(statusFile(
        R"("monitors":{"tu_1":["Pipeline",300],"tu_2":["Agent a5b645",200],"tu_3":["kaputt"],
           "tu_4":[400],"tu_5":[null,["x",1],true,200,"Second",900,"Late"],"tu_6":[]})"));
    ASSERT_TRUE(record);
    EXPECT_THAT(
        StatusStore::watches(&*record),
        ElementsAre(Watch{"Agent a5b645", dateFromSeconds(200)},
                    Watch{"Second", dateFromSeconds(200)}, Watch{"Pipeline", dateFromSeconds(300)},
                    Watch{"", dateFromSeconds(400)}));
}

TEST(StatusFolder, yieldsTheRegularFilesAndCountsTheRest) {
    const TemporaryDirectory folder;
    const TemporaryDirectory outside;
    const std::string valid = statusFile(R"("tool":"Bash")");
    folder.write("another-name.json", valid);
    folder.write("s.jsonl", R"({"session_id":"jsonl","state":"done","ts":1})");
    folder.makeLink("link.json", outside.write("s.json", valid));
    folder.makeLink("dangling.json", outside.at("missing"));
    folder.makeFifo("fifo.json");
    folder.makeDirectory("folder.json");
    folder.write("empty.json", "");
    folder.write("no-json.json", "kein JSON");
    folder.write("torn.json", valid.substr(0, 40));
    folder.write("not-utf8.json", statusFile("\"tool\":\"\xff\xfe\""));
    folder.write("unclosed.json", std::string(100'000, '['));
    folder.write("wrong-type.json", statusFile(R"("tool":1)"));
    folder.write("huge.json", statusFile("\"tool\":\"" + std::string(20'000'000, 'x') + "\""));
    for (const char* pass : {"first", "second: none of it was cached"}) {
        SkipTally skipped;
        EXPECT_THAT(StatusStore::load(folder.path(), skipped), UnorderedElementsAre(Key("s")));
        EXPECT_EQ(skipped, (SkipTally{.notRegular = 4, .tooLarge = 1, .malformed = 6})) << pass;
    }
    SkipTally skipped;
    EXPECT_THAT(StatusStore::load(folder.at("missing"), skipped), IsEmpty());
    EXPECT_EQ(skipped, SkipTally());
}

TEST(StatusCache, readsAFileAgainOnlyWhenItChanged) {
    const TemporaryDirectory folder;
    const auto write = [&](const std::string& state, Date modified) {
        folder.write("s.json", R"({"session_id":"s","ts":1,"state":")" + state + "\"}");
        setModificationDate(folder.at("s.json"), modified);
    };
    const struct {
        const char* name;
        const char* written;
        Date modified;
        const char* expected;
        std::uint64_t opens;
    } rows[] = {
        {"new", "idle", now, "idle", 1},
        {"same size and date", "done", now, "idle", 0},
        {"another date", "done", now + Seconds(0.001), "done", 1},
        {"another size", "working", now + Seconds(0.001), "working", 1},
    };
    for (const auto& row : rows) {
        write(row.written, row.modified);
        const std::uint64_t opens = readCounts().opens;
        EXPECT_EQ(load(folder).at("s")->state, row.expected) << row.name;
        EXPECT_EQ(readCounts().opens - opens, row.opens) << row.name;
    }

    std::filesystem::remove(folder.at("s.json"));
    EXPECT_THAT(load(folder), IsEmpty());
    write("waiting", now + Seconds(0.001));
    EXPECT_EQ(load(folder).at("s")->state, "waiting") << "deleted files are forgotten";
}

TEST(StatusCache, servesSeveralThreads) {
    const TemporaryDirectory folder;
    for (int id = 0; id < 5; ++id) {
        const std::string name = "s" + std::to_string(id);
        folder.write(name + ".json", R"({"state":"idle","ts":1,"session_id":")" + name + "\"}");
    }
    const auto readAndChange = [&](int changed) {
        const std::string path = folder.at("s" + std::to_string(changed) + ".json");
        for (int round = 0; round < 200; ++round) {
            setModificationDate(path, now + Seconds(round));
            EXPECT_EQ(load(folder).size(), 5U);
        }
    };
    std::thread other(readAndChange, 0);
    readAndChange(1);
    other.join();
}

TEST(StatusPrune, deletesOldFilesOfUnknownSessions) {
    const TemporaryDirectory state;
    const TemporaryDirectory outside;
    const std::string folder = state.makeDirectory("status");
    const Date old = now - Seconds(31 * 86400);
    for (const char* file : {"status/old.json", "status/kept.json", "status/old.txt",
                             "locks/old.lock", "locks/old.new", "locks/kept.lock"}) {
        state.write(file, "");
    }
    state.makeDirectory("status/folder.json");
    state.makeLink("status/link.json", outside.write("target", ""));
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        setModificationDate(entry.path().string(), old);
    }
    setModificationDate(state.write("status/fresh.json", ""), now - Seconds(29 * 86400));

    StatusStore::prune({"kept"}, Seconds(30 * 86400), folder, now);

    const auto left = [](const std::string& directory) {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(directory)) {
            names.push_back(entry.path().filename());
        }
        return names;
    };
    EXPECT_THAT(left(folder), UnorderedElementsAre("kept.json", "old.txt", "folder.json",
                                                   "link.json", "fresh.json"));
    EXPECT_THAT(left(state.at("locks")), UnorderedElementsAre("kept.lock"));
}

}  // namespace
}  // namespace fleetwise::testing
