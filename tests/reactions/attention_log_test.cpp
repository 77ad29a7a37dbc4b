#include "reactions/attention_log.h"

#include "foundation/json.h"
#include "support/temporary_directory.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <thread>

namespace fleetwise::testing {
namespace {

using namespace std::chrono_literals;
using Episode = AttentionEpisode;

const Date start = *parseInternetDate("2026-11-21T02:00:00.000Z");
constexpr auto day = 24h;

Session session(std::string id, SessionState state, std::optional<std::string> cwd = "/work/a") {
    Session made;
    made.id = std::move(id);
    made.state = state;
    made.cwd = std::move(cwd);
    return made;
}

class AttentionLogTest : public ::testing::Test {
protected:
    std::size_t written() { return loadAttentionEpisodes(file)->size(); }

    /// A wait of ten seconds that ends at `end`.
    static void wait(AttentionLog& log, Date end) {
        log.observe({session("a", SessionState::waiting)}, end - 10s);
        log.observe({}, end);
    }

    TemporaryDirectory folder;
    std::string file = folder.at("attention-log.json");
    AttentionLog log{file, start};
};

TEST_F(AttentionLogTest, endsAnEpisodeWithTheStateItIsOf) {
    using enum SessionState;
    const struct {
        const char* name;
        SessionState first;
        std::optional<SessionState> second;  ///< nothing: the session is gone
        Seconds waited;
        std::vector<SessionState> recorded;
    } rows[] = {
        {"back at work", waiting, working, 5s, {waiting}},
        {"gone", failed, {}, 5s, {failed}},
        {"another reason", decision, done, 5s, {decision, done}},
        {"exactly long enough", waiting, working, 3s, {waiting}},
        {"too short", waiting, working, 2999ms, {}},
        {"never waited", idle, working, 5s, {}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        AttentionLog fresh(folder.at(row.name), start);
        fresh.observe({session("a", row.first)}, start);
        fresh.observe({session("a", row.first, "/work/b")}, start + 1s);
        std::vector<Session> sessions;
        if (row.second) sessions.push_back(session("a", *row.second));
        fresh.observe(sessions, start + row.waited);
        fresh.observe({}, start + row.waited + 5s);
        std::vector<SessionState> recorded;
        for (const Episode& episode : fresh.episodes()) {
            recorded.push_back(episode.state);
            EXPECT_EQ(episode.project, "/work/a");
            EXPECT_EQ(episode.began, recorded.size() == 1 ? start : start + row.waited);
        }
        EXPECT_EQ(recorded, row.recorded);
    }
}

TEST_F(AttentionLogTest, writesWhatALaterLaunchReads) {
    log.observe({session("a", SessionState::waiting), session("b", SessionState::done, {})}, start);
    log.observe({session("b", SessionState::done)}, start + 10s);
    log.flush(start + 20500ms);
    EXPECT_EQ(parseJson(contentsOf(file)), parseJson(R"({"version": 1, "episodes": [
        {"sessionId": "a", "state": "waiting", "project": "/work/a",
         "began": "2026-11-21T02:00:00.000Z", "ended": "2026-11-21T02:00:10.000Z"},
        {"sessionId": "b", "state": "done",
         "began": "2026-11-21T02:00:00.000Z", "ended": "2026-11-21T02:00:20.500Z"}]})"));
    AttentionLog later(file, start + 1h);
    EXPECT_EQ(later.episodes(), log.episodes());
    EXPECT_EQ(later.episodes(start + 10s).size(), 2U);
    EXPECT_EQ(later.episodes(start + 11s).size(), 1U);
}

TEST_F(AttentionLogTest, writesAtMostOnceAMinuteAndLosesNothing) {
    const struct {
        const char* name;
        Date secondEnd;
        std::optional<Date> then;  ///< another look at the fleet, where nothing has changed
        std::size_t written;
    } rows[] = {
        {"within the minute", start + 59s, {}, 1},
        {"a minute later", start + 60s, {}, 2},
        {"made up for", start + 59s, start + 60s, 2},
        {"the clock was set back", start - 1h, {}, 2},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        std::filesystem::remove(file);
        {
            AttentionLog throttled(file, start);
            wait(throttled, start);
            while (!std::filesystem::exists(file))
                std::this_thread::yield();
            wait(throttled, row.secondEnd);
            if (row.then) throttled.observe({}, *row.then);
        }
        EXPECT_EQ(written(), row.written);
    }
}

TEST_F(AttentionLogTest, countsFromTheJumpWhereTheClockIsSetBack) {
    log.observe({session("a", SessionState::waiting)}, start);
    log.observe({session("a", SessionState::waiting)}, start - 1h);
    log.observe({}, start - 1h + 5s);
    ASSERT_EQ(log.episodes().size(), 1U);
    EXPECT_EQ(log.episodes()[0].began, start - 1h);
}

TEST_F(AttentionLogTest, forgetsAfterNinetyDays) {
    AttentionLog first(file, start - 90 * day);
    wait(first, start - 90 * day - 1s);
    wait(first, start - 90 * day);
    first.flush(start - 90 * day);
    EXPECT_EQ(written(), 2U);
    AttentionLog later(file, start);
    EXPECT_EQ(later.episodes().size(), 1U);
    wait(later, start + 1h);
    later.flush(start + 1h);
    EXPECT_EQ(written(), 1U) << "pruned before each write";
}

TEST_F(AttentionLogTest, survivesDamagedFiles) {
    const auto entry = [](const char* state, const char* began, const char* ended) {
        return Json{{"sessionId", "a"}, {"state", state}, {"began", began}, {"ended", ended}};
    };
    const char* earlier = "2026-11-20T01:00:00.000Z";
    const char* later = "2026-11-20T02:00:00.000Z";
    const Json whole = entry("waiting", earlier, later);
    const auto document = [](const Json& episodes) {
        return encodeJson({{"version", 1}, {"episodes", episodes}});
    };
    const struct {
        const char* name;
        std::string contents;
        std::size_t episodes;
    } rows[] = {
        {"empty", "", 0},
        {"torn", document({whole}).substr(0, 60), 0},
        {"array", "[]", 0},
        {"of another version", R"({"version": 2, "episodes": []})", 0},
        {"episodes is an object", document(Json::object({{"a", whole}})), 0},
        {"damaged entries between whole ones",
         document(Json::array({whole, 7, Json::object(), entry("working", earlier, later),
                               entry("waiting", later, earlier), entry("waiting", "x", later),
                               entry("failed", earlier, earlier)})),
         2},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        folder.write("attention-log.json", row.contents);
        AttentionLog damaged(file, start);
        EXPECT_EQ(damaged.episodes().size(), row.episodes);
        wait(damaged, start);
        damaged.flush(start);
        EXPECT_EQ(written(), row.episodes + 1);
    }
}

TEST_F(AttentionLogTest, neverReplacesWhatItCouldNotRead) {
    const std::string elsewhere = folder.write("elsewhere", R"({"version": 1, "episodes": []})");
    folder.makeLink("attention-log.json", elsewhere);
    wait(log, start);
    log.flush(start);
    EXPECT_TRUE(std::filesystem::is_symlink(file));
    EXPECT_EQ(log.episodes().size(), 1U);

    std::filesystem::remove(file);
    log.flush(start + 1s);
    EXPECT_EQ(written(), 1U) << "written once the way is free";
}

TEST_F(AttentionLogTest, servesThreadsAtOnce) {
    std::thread reader([&] {
        for (int step = 0; step < 50; ++step)
            log.episodes();
    });
    for (int step = 1; step <= 50; ++step)
        wait(log, start + step * 1min);
    reader.join();
    log.flush(start + 1h);
    EXPECT_EQ(written(), 50U);
}

Episode episode(const char* began, const char* ended, std::optional<std::string> project = {}) {
    return {.sessionId = "a",
            .state = SessionState::waiting,
            .project = std::move(project),
            .began = *parseInternetDate(began),
            .ended = *parseInternetDate(ended)};
}

TEST(AttentionTotals, sumUpByProject) {
    const std::vector<Episode> episodes{
        episode("2026-11-20T01:00:00Z", "2026-11-20T01:00:10Z", "/b"),
        episode("2026-11-20T01:00:00Z", "2026-11-20T01:00:10Z", "/a"),
        episode("2026-11-20T01:00:00Z", "2026-11-20T01:00:04Z"),
        episode("2026-11-20T01:00:00Z", "2026-11-20T01:00:07Z"),
    };
    const AttentionLog::Summary one{.total = 10s, .count = 1, .longest = 10s};
    const AttentionLog::Summary two{.total = 11s, .count = 2, .longest = 7s};
    const decltype(AttentionLog::byProject({})) expected{{"", two}, {"/a", one}, {"/b", one}};
    EXPECT_EQ(AttentionLog::byProject(episodes), expected);
    EXPECT_EQ(AttentionLog::summary({}), AttentionLog::Summary());
}

TEST(AttentionTotals, splitAtTheMidnightsOfTheCalendar) {
    const struct {
        const char* name;
        const char* since;
        const char* now;
        Episode episode;
        std::string first;
        std::vector<double> hours;
    } rows[] = {
        {"across midnight, with days of nothing",
         "2026-11-18T12:00:00Z",
         "2026-11-22T12:00:00Z",
         episode("2026-11-20T22:00:00Z", "2026-11-21T00:00:00Z"),
         "2026-11-18",
         {0, 0, 1, 1, 0}},
        {"what lies outside does not count",
         "2026-11-20T10:00:00Z",
         "2026-11-20T13:00:00Z",
         episode("2026-11-20T01:00:00Z", "2026-11-20T20:00:00Z"),
         "2026-11-20",
         {3}},
        {"the day of 25 hours",
         "2026-10-23T22:00:00Z",
         "2026-10-26T22:00:00Z",
         episode("2026-10-24T00:00:00Z", "2026-10-26T12:00:00Z"),
         "2026-10-24",
         {22, 25, 13}},
        {"the day of 23 hours",
         "2026-03-28T00:00:00Z",
         "2026-03-30T00:00:00Z",
         episode("2026-03-28T00:00:00Z", "2026-03-30T00:00:00Z"),
         "2026-03-28",
         {23, 23, 2}},
        {"an empty span",
         "2026-11-20T10:00:01Z",
         "2026-11-20T10:00:00Z",
         episode("2026-11-20T01:00:00Z", "2026-11-20T20:00:00Z"),
         "",
         {}},
    };
    const Calendar berlin = date::locate_zone("Europe/Berlin");
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const auto days = AttentionLog::byDay({row.episode}, *parseInternetDate(row.since),
                                              *parseInternetDate(row.now), berlin);
        std::vector<double> hours;
        for (const auto& total : days)
            hours.push_back(total.waited.count() / 3600);
        EXPECT_EQ(hours, row.hours);
        EXPECT_EQ(days.empty() ? "" : date::format("%F", days.front().day), row.first);
    }
}

}  // namespace
}  // namespace fleetwise::testing
