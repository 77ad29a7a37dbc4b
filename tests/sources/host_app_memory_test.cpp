#include "sources/host_app_memory.h"

#include "foundation/json.h"
#include "support/temporary_directory.h"

#include <fmt/format.h>
#include <gmock/gmock.h>

#include <filesystem>
#include <thread>

namespace fleetwise::testing {
namespace {

using namespace std::chrono_literals;

const Date start = *parseInternetDate("2026-11-21T02:00:00.000Z");
constexpr auto day = 24h;

class HostAppMemoryTest : public ::testing::Test {
protected:
    HostAppMemory memory(Date now = start) { return HostAppMemory(file, settings, now); }

    /// The session ids in the file; fails where it is missing.
    std::vector<std::string> written() {
        std::vector<std::string> ids;
        const auto document = parseJson(contentsOf(file)).value_or(Json::object());
        for (const auto& [id, host] : document.at("entries").items())
            ids.push_back(id);
        return ids;
    }

    TemporaryDirectory folder;
    std::string file = folder.at("hosts.json");
    InMemoryUserDefaults settings;
};

TEST_F(HostAppMemoryTest, keepsHostsAcrossLaunches) {
    {
        HostAppMemory first = memory();
        first.remember({{"a", "Konsole", "org.kde.konsole"}, {"b", {}, "kitty"}, {"c", {}, {}}},
                       start);
    }
    EXPECT_EQ(parseJson(contentsOf(file)), parseJson(R"({"version": 1, "entries": {
        "a": {"app": "Konsole", "bundleId": "org.kde.konsole", "seenAt": "2026-11-21T02:00:00.000Z"},
        "b": {"bundleId": "kitty", "seenAt": "2026-11-21T02:00:00.000Z"}}})"));
    const HostAppMemory::Hosts expected{{"a", {"Konsole", "org.kde.konsole", start}},
                                        {"b", {{}, "kitty", start}}};
    EXPECT_EQ(memory().entries(start + 1h), expected);
}

TEST_F(HostAppMemoryTest, refreshesASessionOnceAnHourAndAtOnceInANewHost) {
    HostAppMemory hosts = memory();
    hosts.remember({{"a", "Konsole", "org.kde.konsole"}}, start);
    hosts.flush(start);
    std::filesystem::remove(file);

    hosts.remember({{"a", "Konsole", "org.kde.konsole"}, {"a", {}, {}}}, start + 59min);
    hosts.flush(start + 59min);
    EXPECT_EQ(hosts.entries(start).at("a").seenAt, start);
    EXPECT_FALSE(std::filesystem::exists(file)) << "nothing has changed";

    hosts.remember({{"a", "Konsole", "org.kde.konsole"}}, start + 1h);
    EXPECT_EQ(hosts.entries(start).at("a").seenAt, start + 1h);
    hosts.remember({{"a", "kitty", "kitty"}}, start + 61min);
    EXPECT_EQ(hosts.entries(start).at("a"), (HostAppMemory::Host{"kitty", "kitty", start + 61min}));
}

TEST_F(HostAppMemoryTest, writesAtMostOnceAMinute) {
    const struct {
        const char* name;
        Seconds pause;
        bool flushes;
        std::vector<std::string> ids;
    } rows[] = {
        {"within the minute", 59s, false, {"a"}},
        {"a minute later", 60s, false, {"a", "b"}},
        {"flushed", 59s, true, {"a", "b"}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        std::filesystem::remove(file);
        {
            HostAppMemory hosts = memory();
            hosts.remember({{"a", "kitty", {}}}, start);
            hosts.remember({{"b", "kitty", {}}}, start + row.pause);
            if (row.flushes) hosts.flush(start + row.pause);
        }
        EXPECT_EQ(written(), row.ids);
    }
}

TEST_F(HostAppMemoryTest, forgetsTheOldestAndTheSurplus) {
    HostAppMemory hosts = memory();
    hosts.remember({{"old", "kitty", {}}}, start);
    std::vector<HostAppMemory::Sighting> sightings;
    for (int index = 0; index < 500; ++index)
        sightings.push_back({fmt::format("session {:03}", index), "kitty", {}});
    hosts.remember({{"oldest of 501", "kitty", {}}}, start + 10 * day);
    hosts.remember(sightings, start + 11 * day);
    EXPECT_EQ(hosts.entries(start).size(), 500U);
    EXPECT_FALSE(hosts.entries(start).contains("old"));
    EXPECT_FALSE(hosts.entries(start).contains("oldest of 501"));

    hosts.remember({{"new", "kitty", {}}}, start + 102 * day);
    EXPECT_THAT(hosts.entries(start), ::testing::ElementsAre(::testing::Key("new")));
}

TEST_F(HostAppMemoryTest, survivesDamagedFiles) {
    const std::string host = R"({"app": "kitty", "seenAt": "2026-11-20T00:00:00.000Z"})";
    const struct {
        const char* name;
        std::string contents;
        std::vector<std::string> ids;
    } rows[] = {
        {"empty", "", {}},
        {"torn", R"({"version": 1, "entries": {"a": )" + host, {}},
        {"array", "[]", {}},
        {"entries is a list", R"({"version": 1, "entries": [)" + host + "]}", {}},
        {"version of another program", R"({"version": 2, "entries": {"a": )" + host + "}}", {}},
        {"damaged entries between whole ones",
         R"({"version": 1, "entries": {"a": )" + host + R"(, "b": 7, "c": {"app": "kitty"},
             "d": {"app": "kitty", "seenAt": "yesterday"}, "e": {"seenAt": "2026-11-20T00:00:00Z"},
             "f": {"app": 1, "bundleId": "x", "seenAt": "2026-11-20T00:00:00Z"}}})",
         {"a", "f"}},
        {"older than 90 days, and of the future",
         R"({"version": 1, "entries": {"a": {"app": "x", "seenAt": "2026-08-22T00:00:00.000Z"},
             "b": {"app": "x", "seenAt": "2226-11-21T00:00:00.000Z"}}})",
         {"b"}},
        {"too large", std::string(5 << 20, ' ') + R"({"version": 1, "entries": {}})", {}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        folder.write("hosts.json", row.contents);
        std::vector<std::string> ids;
        for (const auto& [id, entry] : memory().entries(start)) {
            ids.push_back(id);
            EXPECT_LE(entry.seenAt, start);
        }
        EXPECT_EQ(ids, row.ids);
    }
    std::filesystem::remove(file);
    folder.makeLink("hosts.json",
                    folder.write("elsewhere", R"({"version": 1, "entries": {"a": )" + host + "}}"));
    EXPECT_TRUE(memory().entries(start).empty());
}

TEST_F(HostAppMemoryTest, movesTheEarlierSettingOnce) {
    folder.write("hosts.json", R"({"version": 1, "entries": {
        "a": {"app": "Konsole", "seenAt": "2026-11-20T00:00:00.000Z"}}})");
    settings.set("hostBundleIds", {{"a", "old"}, {"b", "kitty"}, {"c", 7}});
    HostAppMemory hosts = memory();
    EXPECT_TRUE(settings.value("hostBundleIds").is_null());
    EXPECT_THAT(written(), ::testing::ElementsAre("a", "b"));
    EXPECT_EQ(hosts.entries(start).at("a").app, "Konsole");
    EXPECT_EQ(hosts.entries(start).at("b"), (HostAppMemory::Host{{}, "kitty", start}));
}

TEST_F(HostAppMemoryTest, worksWhereTheFileCannotBeWritten) {
    file = folder.at("missing/hosts.json");
    settings.set("hostBundleIds", {{"a", "kitty"}});
    HostAppMemory hosts = memory();
    EXPECT_FALSE(settings.value("hostBundleIds").is_null()) << "nothing is lost";
    hosts.remember({{"b", "kitty", {}}}, start + 1min);
    hosts.flush(start + 1min);
    EXPECT_EQ(hosts.entries(start).size(), 2U);
    folder.makeDirectory("missing");
    hosts.remember({{"b", "Konsole", {}}}, start + 2min);
    hosts.flush(start + 2min);
    EXPECT_THAT(written(), ::testing::ElementsAre("a", "b"));
}

TEST_F(HostAppMemoryTest, servesThreadsAtOnce) {
    HostAppMemory hosts = memory();
    std::vector<std::thread> threads;
    for (int thread = 0; thread < 4; ++thread) {
        threads.emplace_back([&hosts, thread] {
            for (int step = 0; step < 20; ++step) {
                const Date now = start + step * 1min;
                hosts.remember({{fmt::format("{}-{}", thread, step), "kitty", {}}}, now);
                hosts.entries(now);
            }
        });
    }
    for (auto& thread : threads)
        thread.join();
    hosts.flush(start + 1h);
    EXPECT_EQ(written().size(), 80U);
}

}  // namespace
}  // namespace fleetwise::testing
