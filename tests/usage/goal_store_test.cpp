// Goals, from databases that Codex wrote and from such as it never would.

#include "usage/goal_store.h"

#include "foundation/directory.h"
#include "support/temporary_directory.h"

#include <gmock/gmock.h>
#include <sqlite3.h>

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <set>

namespace fleetwise::testing {
namespace {

using Status = GoalStore::Status;
using ::testing::UnorderedElementsAre;

const std::string onlyInTheLog = "01a1fbda-c7d5-7102-9225-974645fd5fc6";

constexpr const char* schema =
    "CREATE TABLE thread_goals (thread_id TEXT, goal_id TEXT, objective TEXT, status TEXT, "
    "token_budget INTEGER, tokens_used INTEGER, time_used_seconds INTEGER, created_at_ms INTEGER, "
    "updated_at_ms INTEGER);";

/// Makes a database of this at `path`, without a write-ahead log.
std::string database(const std::string& path, const std::string& sql) {
    sqlite3* opened = nullptr;
    sqlite3_open(path.c_str(), &opened);
    EXPECT_EQ(sqlite3_exec(opened, sql.c_str(), nullptr, nullptr, nullptr), SQLITE_OK) << sql;
    sqlite3_close(opened);
    return path;
}

std::string row(const std::string& values) {
    return "INSERT INTO thread_goals VALUES (" + values + ");";
}

GoalStore::Goals goalsAt(const std::string& path) {
    return *GoalStore().goals(path);
}

std::set<std::string> namesIn(const std::string& folder) {
    std::set<std::string> names;
    for (const DirectoryEntry& entry : listDirectory(folder))
        names.insert(entry.name);
    return names;
}

class RecordedGoals : public ::testing::Test {
protected:
    TemporaryDirectory home;
    std::string path =
        home.write("a folder?/goals %20#1.sqlite", contentsOf(dataPath("goals/goals_1.sqlite")));
    std::string folder = home.at("a folder?");

    void addLog() {
        home.write("a folder?/goals %20#1.sqlite-wal",
                   contentsOf(dataPath("goals/goals_1.sqlite-wal")));
    }
};

TEST_F(RecordedGoals, includeThoseOfTheWriteAheadLogAndLeaveNothingBehind) {
    addLog();
    const auto before = namesIn(folder);
    const auto goals = goalsAt(path);
    ASSERT_EQ(goals.size(), 2);
    EXPECT_EQ(goals.at(onlyInTheLog),
              (GoalStore::Goal{.sessionId = onlyInTheLog,
                               .objective = "Reach the interactive lab goal",
                               .status = Status::paused,
                               .tokensUsed = 286'550,
                               .timeUsed = 3}));
    EXPECT_EQ(goals.at("01a1fbd8-b5ea-7821-8340-4c70fc904d07").tokenBudget, 50'000);
    EXPECT_EQ(namesIn(folder), before);
    EXPECT_EQ(contentsOf(path), contentsOf(dataPath("goals/goals_1.sqlite")));
    EXPECT_EQ(contentsOf(path + "-wal"), contentsOf(dataPath("goals/goals_1.sqlite-wal")));
}

TEST_F(RecordedGoals, areReadWithoutTheLogWhereThereIsNone) {
    GoalStore store;
    const auto first = store.goals(path);
    EXPECT_FALSE(first->contains(onlyInTheLog));
    EXPECT_EQ(namesIn(folder).size(), 1);
    EXPECT_EQ(store.goals(path), first) << "an unchanged database is not read again";
    addLog();
    EXPECT_EQ(store.goals(path)->size(), 2);
}

TEST_F(RecordedGoals, areNotThereWhileAnotherProcessWritesTheDatabase) {
    int ready[2];
    int done[2];
    ASSERT_EQ(::pipe(ready), 0);
    ASSERT_EQ(::pipe(done), 0);
    const pid_t writer = ::fork();
    if (writer == 0) {
        char byte = 0;
        struct flock lock {};
        lock.l_type = F_WRLCK;
        lock.l_start = 0x40000002;
        lock.l_len = 510;
        const int file = ::open(path.c_str(), O_RDWR);
        const bool isLocked = ::fcntl(file, F_SETLK, &lock) == 0;
        ::close(done[1]);
        const bool isTold = ::write(ready[1], "x", 1) == 1;
        const bool isOver = ::read(done[0], &byte, 1) == 0;
        ::_exit(isLocked && isTold && isOver ? 0 : 1);
    }
    char byte = 0;
    ASSERT_EQ(::read(ready[0], &byte, 1), 1);
    GoalStore store;
    EXPECT_TRUE(store.goals(path)->empty());
    ::close(done[1]);
    int status = 0;
    ::waitpid(writer, &status, 0);
    EXPECT_EQ(status, 0);
    EXPECT_FALSE(store.goals(path)->empty()) << "the next pass finds them";
    for (const int end : {ready[0], ready[1], done[0]})
        ::close(end);
}

TEST_F(RecordedGoals, ofADamagedDatabaseAreNoneOrSome) {
    const std::string whole = contentsOf(dataPath("goals/goals_1.sqlite"));
    for (std::size_t length = 0; length < whole.size(); length += 1024) {
        const TemporaryDirectory cut;
        EXPECT_LE(goalsAt(cut.write("cut.sqlite", whole.substr(0, length))).size(), 1) << length;
        std::string torn = whole;
        for (std::size_t at = length; at < std::min(length + 1024, torn.size()); at += 7)
            torn[at] = static_cast<char>(torn[at] ^ 0x5A);
        EXPECT_LE(goalsAt(cut.write("torn.sqlite", torn)).size(), 1) << length;
        EXPECT_EQ(namesIn(cut.path()).size(), 2);
    }
    const std::string log = contentsOf(dataPath("goals/goals_1.sqlite-wal"));
    for (std::size_t length = 0; length < log.size(); length += 20'000) {
        home.write("a folder?/goals %20#1.sqlite-wal", log.substr(0, length));
        EXPECT_LE(goalsAt(path).size(), 2);
        EXPECT_EQ(namesIn(folder).size(), 2);
    }
}

TEST(Goals, areOnlyInRegularFilesOfTheRightForm) {
    const TemporaryDirectory folder;
    const std::string real =
        database(folder.at("real.sqlite"), schema + row("'a','g','Ship it','active',9,3,2.5,1,1"));
    EXPECT_EQ(goalsAt(real).size(), 1);
    const std::string paths[] = {
        folder.at("missing.sqlite"),
        folder.path(),
        folder.makeLink("link.sqlite", real),
        folder.makeFifo("fifo.sqlite"),
        folder.write("empty.sqlite", ""),
        folder.write("text.sqlite", std::string(9000, 'x')),
        database(folder.at("other.sqlite"), "CREATE TABLE t (a);"),
        database(folder.at("columns.sqlite"), "CREATE TABLE thread_goals (thread_id, objective);"),
        database(folder.at("endless.sqlite"),
                 "CREATE VIEW thread_goals AS WITH RECURSIVE n(i) AS "
                 "(SELECT 1 UNION ALL SELECT i + 1 FROM n) SELECT "
                 "i AS thread_id, i AS objective, i AS status, i AS "
                 "token_budget, i AS tokens_used, i AS "
                 "time_used_seconds, i AS updated_at_ms FROM n;")};
    for (const std::string& path : paths)
        EXPECT_TRUE(goalsAt(path).empty()) << path;
}

TEST(Goals, skipRowsOfAnotherForm) {
    const TemporaryDirectory folder;
    const auto goals = goalsAt(database(
        folder.at("g.sqlite"),
        schema + row("'old','g','before','active',1,1,1,1,5") +
            row("'old','g','after','usage_limited',-4,-7,-1,1,9") +
            row("'old','g','long ago','active',1,1,1,1,2") +
            row("'what','g','x','abandoned',1,1,1,1,1") + row("NULL,'g','x','active',1,1,1,1,1") +
            row("'','g','x','active',1,1,1,1,1") + row("x'00ff','g','x','active',1,1,1,1,1") +
            row("'none','g',NULL,'active',1,1,1,1,1") +
            row("'types','g','x','blocked','many',x'01','long',1,'z'") +
            row("'bytes','g',CAST(x'61ff62' AS TEXT),'complete',1,1,1,1,1") +
            row("'long','g',replace(hex(zeroblob(9000)),'0','ä'),'active',1,1,1,1,1")));
    std::set<std::string> ids;
    for (const auto& [id, goal] : goals)
        ids.insert(id);
    ASSERT_THAT(ids, UnorderedElementsAre("old", "types", "bytes", "long"));
    EXPECT_EQ(
        goals.at("old"),
        (GoalStore::Goal{.sessionId = "old", .objective = "after", .status = Status::usageLimited}))
        << "the latest row counts, and figures below 0 do not";
    EXPECT_EQ(goals.at("types"),
              (GoalStore::Goal{.sessionId = "types", .objective = "x", .status = Status::blocked}));
    EXPECT_EQ(goals.at("bytes").objective, "a\uFFFDb");
    EXPECT_EQ(goals.at("long").objective.size(), 2000);
}

TEST(Goals, areShortenedAndMeasured) {
    GoalStore::Goal goal{.objective = " Ship\n\tthe  release ", .tokensUsed = 31};
    EXPECT_EQ(goal.displayObjective(), "Ship the release");
    goal.objective = " \n\t";
    EXPECT_EQ(goal.displayObjective(), "");
    goal.objective = std::string(81, 'x');
    EXPECT_EQ(goal.displayObjective(), std::string(79, 'x') + "…");
    EXPECT_EQ(goal.share(), std::nullopt);
    goal.tokenBudget = 62;
    EXPECT_EQ(goal.share(), 0.5);
    goal.tokensUsed = 63;
    EXPECT_EQ(goal.share(), 1.0);
}

}  // namespace
}  // namespace fleetwise::testing
