#include "sources/background_task_store.h"

#include "support/temporary_directory.h"

#include <gmock/gmock.h>

namespace fleetwise::testing {
namespace {

using namespace std::chrono_literals;
using Status = BackgroundTask::Status;
using ::testing::ElementsAre;

const Date now = *parseInternetDate("2026-11-21T02:00:00.000Z");

class BackgroundTaskStoreTest : public ::testing::Test {
protected:
    std::vector<BackgroundTask> tasksAt(Date date) {
        return store.tasks(
            "s", launches,
            {.agentIsLive = agentIsLive, .outputDirectory = folder.at("out"), .endings = &endings},
            date);
    }

    BackgroundTask task(Status status, std::optional<Date> endedAt = {},
                        std::optional<int> exitStatus = {}) {
        return {.id = "a",
                .command = "make",
                .startedAt = now - 1h,
                .endedAt = endedAt,
                .exitStatus = exitStatus,
                .status = status};
    }

    TemporaryDirectory folder;
    BackgroundTaskStore store;
    BackgroundTaskStore::Launches launches{{"a", {.cmd = "make", .at = now - 1h}}};
    std::map<std::string, TaskEnding> endings;
    bool agentIsLive = true;
};

TEST_F(BackgroundTaskStoreTest, judgesListedCommands) {
    const Date ended = now - 5min;
    const TaskEnding failure{TaskEnding::Outcome::failed, 2, ended};
    const struct {
        const char* name;
        bool agentIsLive;
        std::optional<TaskEnding> ending;
        bool hasOutput;
        BackgroundTask expected;
    } rows[] = {
        {"running", true, {}, true, task(Status::running)},
        {"agent gone, output there", false, {}, true, task(Status::aborted, now - 4min)},
        {"agent gone, nothing left", false, {}, false, task(Status::orphaned, now)},
        {"failed by its notice", true, failure, true, task(Status::failed, ended, 2)},
        {"notice outlives the agent", false, failure, true, task(Status::failed, ended, 2)},
        {"notice without a time", true, TaskEnding{}, true, task(Status::completed, now)},
    };
    setModificationDate(folder.write("out/a.output", "x"), now - 4min);
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        store.prune({});
        std::map<std::string, TaskEnding> notices;
        if (row.ending) notices.emplace("a", *row.ending);
        const BackgroundTaskStore::Surroundings around{
            .agentIsLive = row.agentIsLive,
            .outputDirectory = folder.at(row.hasOutput ? "out" : "elsewhere"),
            .endings = &notices};
        EXPECT_THAT(store.tasks("s", launches, around, now), ElementsAre(row.expected));
        EXPECT_THAT(store.tasks("s", launches, around, now), ElementsAre(row.expected));
    }
}

TEST_F(BackgroundTaskStoreTest, showsAnEndForTenMinutes) {
    const struct {
        const char* name;
        std::function<void()> end;
        Status status;
    } rows[] = {
        {"left the list", [&] { launches.clear(); }, Status::completed},
        {"told while on the list", [&] { endings["a"] = {}; }, Status::completed},
        {"told as it left the list",
         [&] {
             launches.clear();
             endings["a"] = {TaskEnding::Outcome::failed, 1, now + 1min};
         },
         Status::failed},
        // Its output was last written an hour ago, yet it was seen running.
        {"agent killed", [&] { agentIsLive = false; }, Status::aborted},
    };
    setModificationDate(folder.write("out/a.output", "x"), now - 1h);
    const auto initial = launches;
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        store.prune({});
        launches = initial;
        endings.clear();
        agentIsLive = true;
        EXPECT_THAT(tasksAt(now), ElementsAre(task(Status::running)));
        row.end();
        for (const Date date : {now + 1min, now + 11min}) {
            const auto shown = tasksAt(date);
            ASSERT_EQ(shown.size(), 1U);
            EXPECT_EQ(shown[0].status, row.status);
            EXPECT_EQ(shown[0].endedAt, now + 1min);
        }
        EXPECT_TRUE(tasksAt(now + 12min).empty());
        EXPECT_TRUE(tasksAt(now + 13min).empty()) << "it does not come back";
    }
}

TEST_F(BackgroundTaskStoreTest, takesANoticeThatArrivesLate) {
    tasksAt(now);
    launches.clear();
    EXPECT_EQ(tasksAt(now + 1min).front().status, Status::completed);
    endings["a"] = {TaskEnding::Outcome::failed, 3, {}};
    EXPECT_THAT(tasksAt(now + 2min), ElementsAre(task(Status::failed, now + 1min, 3)));
}

TEST_F(BackgroundTaskStoreTest, sortsByStartAndKeepsSessionsApart) {
    launches = {{"c", {.cmd = {}, .at = now - 3min}},
                {"b", {.cmd = {}, .at = now - 1min}},
                {"a", {.cmd = {}, .at = now - 1min}},
                {"d", {}}};
    std::string order;
    for (const auto& shown : tasksAt(now))
        order += shown.id;
    EXPECT_EQ(order, "dcab");
    EXPECT_TRUE(store.tasks("other", {}, {}, now).empty());
    store.prune({"other"});
    launches.clear();
    EXPECT_TRUE(tasksAt(now).empty()) << "nothing is remembered of a forgotten session";
}

TEST_F(BackgroundTaskStoreTest, takesNoPathForAnOutput) {
    agentIsLive = false;
    const std::string file = folder.write("secret.output", "x");
    folder.makeLink("out/link.output", file);
    folder.makeDirectory("out/folder.output");
    launches = {{"../secret", {}}, {"link", {}}, {"folder", {}}, {"", {}}};
    const auto shown = tasksAt(now);
    ASSERT_EQ(shown.size(), 4U);
    for (const auto& each : shown)
        EXPECT_EQ(each.status, Status::orphaned) << each.id;
}

TEST(BackgroundOutputDirectory, followsTheAgentsLayout) {
    EXPECT_EQ(backgroundOutputDirectory("81a6", "-home-dev-work-demo", 1000),
              "/tmp/claude-1000/-home-dev-work-demo/81a6/tasks");
    for (const char* id : {"", ".", "..", "../x"})
        EXPECT_EQ(backgroundOutputDirectory(id, "-w", 1000), std::nullopt) << id;
    EXPECT_EQ(backgroundOutputDirectory("81a6", "", 1000), std::nullopt);
}

}  // namespace
}  // namespace fleetwise::testing
