#include "sources/session_registry.h"

#include "foundation/json.h"
#include "foundation/regular_file.h"
#include "support/fake_process_table.h"
#include "support/temporary_directory.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>
#include <map>

namespace fleetwise::testing {
namespace {

using ::testing::ElementsAreArray;
using ::testing::IsEmpty;
using Entry = SessionRegistry::Entry;

/// The processes it was told of, by their start.
class FakeProcesses final : public FakeProcessTable {
public:
    /// A process whose start cannot be read has none.
    std::map<std::int32_t, std::optional<std::uint64_t>> running;
    mutable int lookUps = 0;

    bool exists(std::int32_t pid) const override { return running.contains(pid); }
    std::optional<Process> process(std::int32_t pid) const override {
        ++lookUps;
        const auto found = running.find(pid);
        if (found == running.end() || !found->second) return {};
        return Process{.parent = 1, .start = *found->second};
    }
};

std::optional<Entry> decoded(const std::string& text) {
    return SessionRegistry::decode(padded(text));
}

std::vector<std::string> liveSessions(const std::string& folder, const ProcessTable& processes) {
    std::vector<std::string> ids;
    SkipTally skipped;
    for (const auto& entry : SessionRegistry::liveEntries(folder, processes, skipped)) {
        ids.push_back(std::to_string(entry.pid) + " " + entry.sessionId);
    }
    return ids;
}

TEST(RegistryEntry, needsAProcessAndASession) {
    const struct {
        const char* name;
        const char* text;
        bool isEntry;
    } rows[] = {
        {"largest process id", R"({"pid":2147483647,"sessionId":"s"})", true},
        {"no session", R"({"pid":42})", false},
        {"empty session", R"({"pid":42,"sessionId":""})", false},
        {"negative process", R"({"pid":-1,"sessionId":"s"})", false},
        {"process id that wraps to 1", R"({"pid":4294967297,"sessionId":"s"})", false},
        {"process that is a text", R"({"pid":"42","sessionId":"s"})", false},
    };
    for (const auto& row : rows)
        EXPECT_EQ(decoded(row.text).has_value(), row.isEntry) << row.name;
}

TEST(RegistryEntry, isNeverMadeOfATornFile) {
    const std::string whole =
        R"({"pid":42,"sessionId":"s","cwd":{"a":[1]},"peer":["a"],"name":"n"})";
    ASSERT_TRUE(decoded(whole));
    for (std::size_t length = 0; length < whole.size(); ++length) {
        for (const char* tail : {"", "]", ","}) {
            EXPECT_FALSE(decoded(whole.substr(0, length) + tail)) << length << tail;
        }
    }
}

TEST(RegistryEntry, losesNoMoreThanTheKeyOfAWrongType) {
    const Entry least{.pid = 42, .sessionId = "s"};
    EXPECT_EQ(decoded(R"({"cwd":{"a":[1]},"startedAt":"now","version":2,"kind":[],"entrypoint":null,
                          "name":7,"nameSource":{},"status":false,"waitingFor":1,"pid":42,
                          "messagingSocketPath":[["x"]],"statusUpdatedAt":"1","procStart":-1,
                          "sessionId":"s"})"),
              least);
    for (const char* start : {"\"\"", "\"12x\"", "\"-1\"", "\"18446744073709551616\"", "1.5"}) {
        EXPECT_EQ(decoded(R"({"pid":42,"sessionId":"s","procStart":)" + std::string(start) + "}"),
                  least)
            << start;
    }
    for (const char* start : {"\"252002\"", "252002", "252002.0"}) {
        const auto entry =
            decoded(R"({"pid":42,"sessionId":"s","procStart":)" + std::string(start) + "}");
        EXPECT_EQ(entry->procStart, 252002U) << start;
    }
}

TEST(RegistryEntry, tellsAGivenNameFromAMadeUpOne) {
    const struct {
        std::optional<std::string> name;
        std::optional<std::string> source;
        std::optional<std::string> expected;
    } rows[] = {
        {"Umbau", {}, "Umbau"}, {"Umbau", "user", "Umbau"}, {"demo-30", "derived", {}},
        {"", "user", {}},       {{}, "user", {}},
    };
    for (const auto& row : rows) {
        const Entry entry{.name = row.name, .nameSource = row.source};
        EXPECT_EQ(entry.userGivenName(), row.expected) << row.name.value_or("no name");
    }
}

TEST(LiveEntries, areThoseWhoseProcessStillRuns) {
    const TemporaryDirectory folder;
    folder.write("10.json", R"({"pid":10,"sessionId":"runs","procStart":"500"})");
    folder.write("11.json", R"({"pid":11,"sessionId":"id was reused","procStart":"500"})");
    folder.write("12.json", R"({"pid":12,"sessionId":"gone","procStart":"500"})");
    folder.write("13.json", R"({"pid":13,"sessionId":"start cannot be read","procStart":"500"})");
    folder.write("9.json", R"({"pid":9,"sessionId":"older agent"})");
    FakeProcesses processes;
    processes.running = {{9, {}}, {10, 500}, {11, 501}, {13, {}}};
    EXPECT_THAT(liveSessions(folder.path(), processes),
                ElementsAreArray({"9 older agent", "10 runs", "13 start cannot be read"}));
    EXPECT_EQ(processes.lookUps, 3) << "only where there is a start to compare";
    EXPECT_THAT(liveSessions(folder.at("missing"), processes), IsEmpty());
}

TEST(LiveEntries, holdTheNewestOfEachSession) {
    const TemporaryDirectory folder;
    const Date date = dateFromSeconds(1'795'226'672);
    const auto write = [&](int pid, const std::string& members, Date modified) {
        const std::string id = std::to_string(pid);
        setModificationDate(folder.write(id + ".json", "{\"pid\":" + id + "," + members + "}"),
                            modified);
    };
    write(1, R"("sessionId":"by start","startedAt":200)", date);
    write(2, R"("sessionId":"by start","startedAt":100)", date + Seconds(9));
    write(3, R"("sessionId":"by start")", date + Seconds(9));
    write(4, R"("sessionId":"by file","startedAt":100)", date + Seconds(9));
    write(5, R"("sessionId":"by file","startedAt":100)", date);
    write(6, R"("sessionId":"newest is dead","startedAt":100)", date);
    write(7, R"("sessionId":"newest is dead","startedAt":200)", date);
    FakeProcesses processes;
    processes.running = {{1, {}}, {2, {}}, {3, {}}, {4, {}}, {5, {}}, {6, {}}};
    EXPECT_THAT(liveSessions(folder.path(), processes),
                ElementsAreArray({"1 by start", "4 by file", "6 newest is dead"}));
}

TEST(LiveEntries, passOverWhatIsNoEntry) {
    const TemporaryDirectory folder;
    const TemporaryDirectory outside;
    const std::string valid = R"({"pid":42,"sessionId":"s"})";
    folder.write("42.json", valid);
    folder.write("42.0c4f.key", valid);
    folder.makeFifo("43.0c4f.key");
    folder.makeLink("link.json", outside.write("secret", valid));
    folder.makeFifo("fifo.json");
    folder.makeDirectory("folder.json");
    folder.write("empty.json", "");
    folder.write("not-utf8.json", "{\"pid\":42,\"sessionId\":\"\xff\"}");
    folder.write("deep.json", "{\"a\":" + std::string(100'000, '['));
    folder.write("huge.json", valid + std::string(2 << 20, ' '));
    FakeProcesses processes;
    processes.running = {{42, {}}};
    const std::uint64_t opens = readCounts().opens;
    SkipTally skipped;
    EXPECT_EQ(SessionRegistry::liveEntries(folder.path(), processes, skipped).size(), 1U);
    EXPECT_EQ(skipped, (SkipTally{.notRegular = 3, .tooLarge = 1, .malformed = 3}));
    EXPECT_EQ(readCounts().opens - opens, 5U) << "neither links nor keys are opened";
}

/// What a recorded run of the agent shows at each version of its registry file: "-" where the
/// agent told no status yet, "gone" after its end.
std::vector<std::string> replayed(const std::string& recording) {
    const TemporaryDirectory folder;
    FakeProcesses processes;
    std::vector<std::string> shown;
    std::ifstream lines(dataPath("registry/" + recording));
    for (std::string line; std::getline(lines, line);) {
        const Json version = Json::parse(line);
        const std::string file = version.at("file").get<std::string>();
        if (version.contains("removed")) {
            std::filesystem::remove(folder.at(file));
        } else {
            const Json& content = version.at("content");
            processes.running[content.at("pid").get<std::int32_t>()] =
                std::stoull(content.at("procStart").get<std::string>());
            folder.write(file, content.dump());
            setModificationDate(folder.at(file), dateFromSeconds(version.at("at").get<double>()));
        }
        SkipTally skipped;
        const auto entries = SessionRegistry::liveEntries(folder.path(), processes, skipped);
        EXPECT_EQ(skipped, SkipTally()) << line;
        if (entries.empty()) {
            shown.emplace_back("gone");
            continue;
        }
        const Entry& entry = entries.front();
        shown.push_back(entry.status.value_or("-") +
                        (entry.waitingFor ? ": " + *entry.waitingFor : ""));
        EXPECT_EQ(entry.userGivenName(), std::nullopt);
        EXPECT_EQ(entry.statusUpdatedAt.has_value(), entry.status.has_value());
    }
    return shown;
}

TEST(RegistryRecording, replaysAsTheUserSawIt) {
    const struct {
        const char* recording;
        std::vector<std::string> expected;
    } rows[] = {
        {"permission.jsonl",
         {"-", "idle", "busy", "waiting: permission prompt", "busy", "idle", "gone"}},
        {"question_escaped.jsonl", {"-", "idle", "busy", "waiting: input needed", "idle", "gone"}},
        {"background_command.jsonl", {"-", "idle", "busy", "shell", "busy", "idle", "gone"}},
        {"desktop.jsonl", {"-", "busy", "idle", "gone"}},
    };
    for (const auto& row : rows)
        EXPECT_EQ(replayed(row.recording), row.expected) << row.recording;
}

}  // namespace
}  // namespace fleetwise::testing
