#include "fleet/fleet_snapshot.h"

#include "fleet_home.h"
#include "foundation/regular_file.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <thread>

namespace fleetwise::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Key;
using ::testing::UnorderedElementsAre;

TEST(FleetSnapshot, showsTheTrueStateOfALiveSession) {
    using enum SessionState;
    const auto ahead = [](double seconds) { return 1'795'226'700.0 + seconds; };
    const auto status = [&](const char* word, double age) {
        return Json{{"status", word}, {"statusUpdatedAt", ahead(-age) * 1000}};
    };
    const struct {
        const char* name;
        const char* recorded;
        double age;
        Json record;
        Json registry;
        SessionState expected;
    } rows[] = {
        {"at work", "working", 5, {}, {}, working},
        {"the last subagent stopped", "working", 5, {{"event", "SubagentStop"}}, {}, done},
        {"two subagents, at the limit",
         "working",
         1200,
         {{"subagents", 2}},
         {},
         waitingForSubagents},
        {"two subagents, beyond the limit", "working", 1201, {{"subagents", 2}}, {}, working},
        {"answered while a subagent works", "done", 5, {{"subagents", 1}}, {}, waitingForSubagents},
        {"a subagent does not hide a question", "decision", 5, {{"subagents", 1}}, {}, decision},
        {"wake-up ahead", "idle", 5, {{"wakeup_at", ahead(60)}}, {}, scheduled},
        {"wake-up ahead, but at work", "working", 5, {{"wakeup_at", ahead(60)}}, {}, working},
        {"wake-up ahead of an answer", "done", 5, {{"wakeup_at", ahead(60)}}, {}, scheduled},
        {"wake-up behind", "idle", 5, {{"wakeup_at", ahead(-1)}}, {}, idle},
        {"answer within its grace", "done", 5, {{"done_at", ahead(-1800)}}, {}, done},
        {"answer beyond its grace", "done", 5, {{"done_at", ahead(-1801)}}, {}, idle},
        {"failure within its grace", "failed", 1800, {}, {}, failed},
        {"failure beyond its grace", "failed", 1801, {}, {}, idle},
        {"question without end", "decision", 9000, {}, {}, decision},
        {"interrupted", "working", 60, {}, status("idle", 10), idle},
        {"registry older than the event", "working", 5, {}, status("idle", 10), working},
        {"interrupted before a subagent's event",
         "working",
         5,
         {{"state_ts", ahead(-60)}},
         status("idle", 10),
         idle},
        {"the registry says busy while subagents run",
         "done",
         60,
         {{"subagents", 1}},
         status("busy", 10),
         waitingForSubagents},
        {"a state nobody knows", "pondering", 5, {}, {}, unknown},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        FleetHome fleet;
        fleet.runs("s", 4711, row.registry.is_null() ? Json::object() : row.registry);
        fleet.records("s", row.recorded, row.age,
                      row.record.is_null() ? Json::object() : row.record);
        const Session session = only(fleet.collect(), "s");
        EXPECT_EQ(rawValue(session.state), rawValue(row.expected));
        EXPECT_TRUE(session.isLive);
    }
}

TEST(FleetSnapshot, asksForAnotherPassWhileAContradictionIsNotSettled) {
    FleetHome fleet;
    fleet.records("s", "working", 60);
    const double now = secondsSince1970(fleet.now);
    fleet.runs("s", 4711, {{"status", "idle"}, {"statusUpdatedAt", (now - 0.4) * 1000}});
    auto collection = fleet.collect();
    EXPECT_EQ(only(collection, "s").state, SessionState::working);
    EXPECT_EQ(collection.recheckIn, Seconds(1));

    fleet.runs("s", 4711, {{"status", "idle"}, {"statusUpdatedAt", (now - 1.4) * 1000}});
    collection = fleet.collect();
    EXPECT_EQ(only(collection, "s").state, SessionState::idle);
    EXPECT_FALSE(collection.recheckIn);
}

TEST(FleetSnapshot, countsAProcessAsLiveOnlyWhileItRuns) {
    FleetHome fleet;
    fleet.runs("gone", 10);
    fleet.processes.processes.erase(10);
    fleet.runs("reused", 11, {{"procStart", "99"}});
    fleet.runs("running", 12, {{"procStart", "100"}});
    fleet.runs("older", 13, {{"startedAt", 1000}});
    fleet.runs("older", 14, {{"startedAt", 2000}, {"cwd", "/srv/newer"}});
    const auto collection = fleet.collect();
    EXPECT_THAT(ids(collection), UnorderedElementsAre("running", "older"));
    EXPECT_EQ(only(collection, "older").pid, 14);
    EXPECT_EQ(only(collection, "older").cwd, "/srv/newer");
}

TEST(FleetSnapshot, keepsASessionWhoseRegistryFileIsBeingWritten) {
    FleetHome fleet;
    fleet.runs("s", 4711);
    fleet.records("s", "decision", 5);
    fleet.writesTranscript("s", 5);
    fleet.collect();
    fleet.home.write("sessions/4711.json", R"({"pid":4711,"sess)");
    EXPECT_EQ(only(fleet.collect(), "s").state, SessionState::decision);
    fleet.processes.processes.erase(4711);
    EXPECT_EQ(only(fleet.collect(), "s").state, SessionState::dormant);
}

TEST(FleetSnapshot, mergesWhatTheSourcesTell) {
    FleetHome fleet;
    fleet.runs("s", 4711,
               {{"name", "demo-30"}, {"nameSource", "derived"}, {"startedAt", 1795226000000}});
    fleet.records("s", "working", 5,
                  {{"event", "PreToolUse"},
                   {"tool", "Bash"},
                   {"activity", "npm test"},
                   {"turn_started_at", secondsSince1970(fleet.now) - 60},
                   {"permission_mode", "plan"},
                   {"cwd", "/elsewhere"},
                   {"monitors", {{"tu_1", {"Pipeline", 300}}}},
                   {"background", {{"b1", {{"cmd", "sleep 8"}, {"at", 400}}}}}});
    fleet.writesTranscript("s", 2,
                           FleetHome::prompt("Fix the <!-- fleetwise:verbund=f7 --> build") +
                               FleetHome::reply("Done.", 120));
    fleet.home.write("work/demo/.git/HEAD", "ref: refs/heads/feature/x\n");
    fleet.home.write("tasks/s/1.json", R"({"id":"1","subject":"One","status":"in_progress"})");
    const Session session = only(fleet.collect(), "s");
    EXPECT_EQ(session.cwd, fleet.project);
    EXPECT_FALSE(session.name) << "a made-up name is no name";
    EXPECT_EQ(session.title, "Fix the  build");
    EXPECT_EQ(session.model, "claude-opus-5-5");
    EXPECT_EQ(session.gitBranch, "feature/x");
    EXPECT_EQ(session.federationId, "f7");
    EXPECT_EQ(session.permissionMode, "plan");
    EXPECT_EQ(session.stateSince, fleet.now - Seconds(60));
    EXPECT_EQ(session.lastActivityAt, fleet.now - Seconds(2));
    EXPECT_EQ(session.origin, SessionOrigin::cli);
    ASSERT_TRUE(session.stats);
    EXPECT_EQ(session.stats->outputTokens, 120);
    ASSERT_TRUE(session.tasks);
    EXPECT_EQ(session.tasks->inProgress, 1);
    EXPECT_EQ(session.monitors.size(), 1U);
    ASSERT_EQ(session.backgroundTasks.size(), 1U);
    EXPECT_EQ(session.backgroundTasks[0].status, BackgroundTask::Status::running);
}

TEST(FleetSnapshot, letsTheDesktopAppSpeakForItsSessions) {
    FleetHome fleet;
    fleet.runs("s", 4711, {{"entrypoint", "claude-desktop"}});
    fleet.records("s", "working", 60);
    fleet.writesTranscript("s", 60);
    const auto milliseconds = [&](double age) {
        return secondsSince1970(fleet.now - Seconds(age)) * 1000;
    };
    Json metadata{{"title", "From the app"},     {"error", "rate_limit"},
                  {"errorAt", milliseconds(90)}, {"permissionMode", "plan"},
                  {"isArchived", true},          {"model", "claude-opus-5-5"}};
    fleet.describesInDesktop("s", metadata);
    auto collection = fleet.collect();
    EXPECT_EQ(only(collection, "s").state, SessionState::working) << "an older error";
    EXPECT_EQ(only(collection, "s").title, "From the app");
    EXPECT_EQ(only(collection, "s").permissionMode, "plan");
    EXPECT_THAT(collection.titledByDesktop, ElementsAre("s"));

    metadata["errorAt"] = milliseconds(30.5);
    fleet.describesInDesktop("s", metadata);
    metadata["lastActivityAt"] = milliseconds(100);
    fleet.describesInDesktop("archived", metadata);
    metadata["isArchived"] = false;
    fleet.describesInDesktop("ended", metadata);
    collection = fleet.collect();
    EXPECT_EQ(only(collection, "s").state, SessionState::failed);
    EXPECT_EQ(only(collection, "s").detail(fleet.now, nullptr), "Ratenlimit erreicht");
    EXPECT_THAT(ids(collection), ElementsAre("s", "ended"));
    EXPECT_EQ(only(collection, "ended").origin, SessionOrigin::desktop);
    EXPECT_EQ(only(collection, "ended").model, "claude-opus-5-5") << "without a transcript";
}

TEST(FleetSnapshot, listsEndedSessionsByAge) {
    FleetHome fleet;
    fleet.writesTranscript("fresh", 60);
    fleet.writesTranscript("old", 90'000);
    fleet.writesTranscript("favourite", 900'000);
    fleet.writesTranscript("dismissed", 60);
    fleet.runs("live", 4711);
    fleet.writesTranscript("live", 60);
    fleet.records("fresh", "working", 60, {{"subagents", 2}});
    fleet.input.keepRegardlessOfAge = {"favourite"};
    fleet.input.dismissed = {"dismissed", "live"};

    auto collection = fleet.collect();
    EXPECT_THAT(ids(collection), UnorderedElementsAre("live", "fresh", "favourite"));
    EXPECT_THAT(collection.leftOut, ElementsAre(Key("dismissed")));
    EXPECT_EQ(only(collection, "fresh").state, SessionState::dormant);
    EXPECT_EQ(only(collection, "fresh").subagentCount, 0);
    EXPECT_TRUE(only(collection, "favourite").isFavorite);

    fleet.input.dormantMaxAge = Seconds(0);
    EXPECT_THAT(ids(fleet.collect()), UnorderedElementsAre("live", "favourite"));
    fleet.input.dormantMaxAge.reset();
    EXPECT_THAT(ids(fleet.collect()), UnorderedElementsAre("live", "fresh", "old", "favourite"));
}

TEST(FleetSnapshot, takesInTheSessionsOfForeignTools) {
    FleetHome fleet;
    fleet.records("gemini", "waiting", 60, {{"agent", " Gemini\n"}});
    fleet.records("gemini-yesterday", "working", 80'000, {{"agent", "gemini"}});
    fleet.records("gemini-old", "working", 86'400, {{"agent", "gemini"}});
    fleet.records("claude-new", "idle", 5);
    fleet.records("claude-ended", "dormant", 5);
    fleet.records("claude-killed", "working", 90'000);
    fleet.writesTranscript("claude-killed", 90'000);
    fleet.records("gemini-dismissed", "working", 60, {{"agent", "gemini"}});
    fleet.input.dismissed = {"gemini-dismissed"};
    auto collection = fleet.collect();
    EXPECT_THAT(ids(collection), ElementsAre("gemini", "gemini-yesterday", "claude-new"));
    EXPECT_EQ(only(collection, "gemini").agent.label(), "Gemini");
    EXPECT_EQ(only(collection, "gemini").state, SessionState::waiting);
    EXPECT_TRUE(only(collection, "gemini-yesterday").isLive);

    fleet.input.dormantMaxAge.reset();
    collection = fleet.collect();
    EXPECT_EQ(only(collection, "gemini-old").state, SessionState::dormant);
    EXPECT_FALSE(only(collection, "gemini-old").isLive);
}

TEST(FleetSnapshot, listsEachIdOnceAndHidesCodexOnRequest) {
    FleetHome fleet;
    fleet.runs("a", 4711);
    fleet.writesTranscript("a", 5);
    fleet.records("a", "working", 5);
    fleet.records("c", "working", 5, {{"agent", "codex"}});
    for (const char* id : {"a", "c", "d"})
        fleet.writesRollout(id, 5, {{"task_started", Json::object()}});
    EXPECT_THAT(ids(fleet.collect()), UnorderedElementsAre("a", "c", "d"));
    fleet.input.showsCodex = false;
    EXPECT_THAT(ids(fleet.collect()), ElementsAre("a"));
}

TEST(FleetSnapshot, timesItsPhasesInOrder) {
    FleetHome fleet;
    EXPECT_THAT(fleet.collect().sessions, IsEmpty()) << "no folder is there at all";
    std::vector<std::string> phases;
    for (const auto& [name, milliseconds] : fleet.shared.timings) {
        phases.push_back(name);
        EXPECT_GE(milliseconds, 0);
    }
    EXPECT_THAT(phases,
                ElementsAre("Desktop-Metadaten", "Statusdateien", "Laufende Sitzungen",
                            "Ruhende Sitzungen", "Codex", "Fremde Werkzeuge", "Codex ausblenden",
                            "Statistik je Sitzung", "Aufräumen", "Sortieren"));
}

TEST(FleetSnapshot, readsOnlyWhatChanged) {
    FleetHome fleet;
    fleet.runs("s", 4711);
    fleet.records("s", "working", 5);
    fleet.home.write("tasks/s/1.json", R"({"id":"1","subject":"One","status":"pending"})");
    fleet.home.write("work/demo/.git/HEAD", "ref: refs/heads/main\n");
    fleet.writesTranscript("s", 5, FleetHome::prompt(std::string(200'000, 'x')));
    fleet.writesTranscript("ended", 5);
    fleet.collect();

    ReadCounts before = readCounts();
    const auto first = fleet.collect();
    EXPECT_EQ(readCounts().opens, before.opens);
    EXPECT_EQ(readCounts().bytes, before.bytes);

    const std::string appended = FleetHome::reply("More.", 7);
    fleet.home.append("projects/-srv-demo/s.jsonl", appended);
    before = readCounts();
    const Session session = only(fleet.collect(), "s");
    EXPECT_EQ(session.stats->outputTokens, 7);
    // Once for the statistics and once for the title.
    EXPECT_LE(readCounts().bytes - before.bytes, 2 * appended.size());
    EXPECT_LE(readCounts().opens - before.opens, 2U);
}

TEST(FleetSnapshot, passesOverHostileFilesInEveryFolder) {
    FleetHome fleet;
    fleet.runs("s", 4711);
    fleet.records("s", "working", 5);
    const std::string secret = fleet.home.write("secret.json", R"({"pid":1,"sessionId":"x"})");
    for (const std::string folder : {"sessions/", "status/", "projects/-srv-demo/", "tasks/s/"}) {
        const std::string suffix = folder.starts_with("projects") ? ".jsonl" : ".json";
        fleet.home.makeLink(folder + "link" + suffix, secret);
        fleet.home.makeFifo(folder + "fifo" + suffix);
        fleet.home.makeDirectory(folder + "folder" + suffix);
        fleet.home.write(folder + "empty" + suffix, "");
        fleet.home.write(folder + "torn" + suffix, R"({"session_id":"torn","sta)");
        fleet.home.write(folder + "huge" + suffix, std::string(20 << 20, 'x'));
        fleet.home.write(folder + "bytes" + suffix, "{\"session_id\":\"\xff\xfe\"}\n");
        fleet.home.write(folder + "deep" + suffix, std::string(100'000, '['));
        fleet.home.write(folder + "types" + suffix,
                         R"({"pid":"1","sessionId":7,"session_id":[],"state":{},"ts":"x"})");
    }
    fleet.home.write("sessions/4711.0a1b.key", "a secret, never opened");
    const auto collection = fleet.collect();
    EXPECT_EQ(only(collection, "s").state, SessionState::working);
    std::map<std::string, SkipTally> skipped(collection.skipped.begin(), collection.skipped.end());
    for (const char* source : {"Registry", "Status"}) {
        SCOPED_TRACE(source);
        EXPECT_EQ(skipped[source],
                  (SkipTally{.notRegular = 3, .tooLarge = 1, .unreadable = 0, .malformed = 5}));
    }
    EXPECT_EQ(skipped["Transkripte"].notRegular, 3U);
    EXPECT_EQ(skipped["Aufgaben"].notRegular, 3U);
    EXPECT_GE(skipped["Aufgaben"].total(), 7U);
}

TEST(FleetSnapshot, prunesOncePerHourWhateverRunsAtTheSameTime) {
    FleetSnapshot::Shared shared;
    const Date now = dateFromSeconds(1'795'226'700);
    std::atomic<int> pruned{0};
    const auto race = [&](Date at) {
        std::vector<std::thread> threads;
        for (int index = 0; index < 8; ++index) {
            threads.emplace_back([&] { pruned += shared.shouldPrune(at, Seconds(3600)) ? 1 : 0; });
        }
        for (auto& thread : threads)
            thread.join();
    };
    race(now);
    EXPECT_EQ(pruned, 1);
    race(now + Seconds(3599));
    EXPECT_EQ(pruned, 1);
    race(now + Seconds(3600));
    EXPECT_EQ(pruned, 2);
}

TEST(FleetSnapshot, deletesTheOldStatusFilesOfSessionsThatAreGone) {
    FleetHome fleet;
    fleet.records("gone", "dormant", 2'600'000);
    fleet.records("kept", "waiting", 2'600'000);
    fleet.records("recent", "dormant", 2'500'000);
    fleet.runs("kept", 4711);
    for (const char* id : {"gone", "kept"}) {
        setModificationDate(fleet.home.at("status/" + std::string(id) + ".json"),
                            fleet.now - Seconds(2'592'001));
    }
    setModificationDate(fleet.home.at("status/recent.json"), fleet.now - Seconds(2'591'999));
    fleet.collect();
    EXPECT_FALSE(std::filesystem::exists(fleet.home.at("status/gone.json")));
    EXPECT_TRUE(std::filesystem::exists(fleet.home.at("status/kept.json")));
    EXPECT_TRUE(std::filesystem::exists(fleet.home.at("status/recent.json")));
}

TEST(FleetSnapshot, severalPassesAtOnceAgree) {
    FleetHome fleet;
    for (int index = 0; index < 20; ++index) {
        const std::string id = "s" + std::to_string(index);
        fleet.runs(id, 5000 + index);
        fleet.records(id, "working", 5);
        fleet.writesTranscript(id, 5, FleetHome::prompt("Hello") + FleetHome::reply("Yes.", 3));
    }
    const auto expected = fleet.collect().sessions;
    std::vector<std::vector<Session>> results(4);
    std::vector<std::thread> threads;
    for (auto& result : results) {
        threads.emplace_back([&] {
            for (int pass = 0; pass < 10; ++pass)
                result = fleet.collect().sessions;
        });
    }
    for (auto& thread : threads)
        thread.join();
    for (const auto& result : results)
        EXPECT_EQ(result, expected);
}

}  // namespace
}  // namespace fleetwise::testing
