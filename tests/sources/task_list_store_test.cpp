#include "sources/task_list_store.h"

#include "foundation/regular_file.h"
#include "support/temporary_directory.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace fleetwise::testing {
namespace {

using Progress = TaskListStore::Progress;

std::string task(const char* status, const char* activeForm) {
    return std::string(R"({"subject":"The subject","activeForm":)") + activeForm +
           R"(,"status":")" + status + R"("})";
}

TEST(TaskListStore, countsWhatTheAgentWrote) {
    TaskListStore store(dataPath("tasks"));
    SkipTally skipped;
    EXPECT_EQ(store.progress("724f3cf8-4b4e-41fc-ae82-0cbcf59d849f", skipped),
              (Progress{.total = 2, .completed = 1, .inProgress = 0, .activeForm = {}}));
    EXPECT_EQ(skipped, SkipTally());
}

TEST(TaskListStore, tellsWhatTheLowestTaskInProgressDoes) {
    const TemporaryDirectory folder;
    TaskListStore store(folder.path());
    SkipTally skipped;
    folder.write("s/10.json", task("in_progress", R"("Doing ten")"));
    folder.write("s/9.json", task("in_progress", R"("Doing\u001b[31m nine")"));
    folder.write("s/1.json", task("completed", R"("Doing one")"));
    folder.write("s/2.json", task("deleted", R"("Doing two")"));
    EXPECT_EQ(store.progress("s", skipped), (Progress{3, 1, 2, "Doing [31m nine"}));
    folder.write("s/3.json", task("in_progress", "null"));
    EXPECT_EQ(store.progress("s", skipped)->activeForm, "The subject");
    folder.write("s/3.json", task("in_progress", "7 "));
    EXPECT_EQ(store.progress("s", skipped)->activeForm, "The subject");
    EXPECT_EQ(skipped, SkipTally());
}

TEST(TaskListStore, readsAFileAgainOnlyWhenItHasChanged) {
    const TemporaryDirectory folder;
    TaskListStore store(folder.path());
    SkipTally skipped;
    folder.write("s/1.json", task("pending", R"("a")"));
    folder.write("s/2.json", task("pending", R"("a")"));
    store.progress("s", skipped);
    folder.write("s/2.json", task("completed", R"("a")"));
    const ReadCounts before = readCounts();
    EXPECT_EQ(store.progress("s", skipped)->completed, 1);
    EXPECT_EQ(store.progress("s", skipped)->completed, 1);
    EXPECT_EQ(readCounts().opens - before.opens, 1U);
    std::filesystem::remove(folder.at("s/2.json"));
    EXPECT_EQ(store.progress("s", skipped)->total, 1);
}

TEST(TaskListStore, passesOverWhatIsNoTask) {
    const TemporaryDirectory folder;
    TaskListStore store(folder.at("tasks"));
    const std::string good = folder.write("tasks/s/1.json", task("pending", R"("a")"));
    folder.makeLink("tasks/s/2.json", good);
    folder.makeFifo("tasks/s/3.json");
    folder.makeDirectory("tasks/s/4.json");
    folder.write("tasks/s/5.json", "");
    folder.write("tasks/s/6.json", "{\"status\":\"pending\"");
    folder.write("tasks/s/7.json", "[{\"status\":\"pending\"}]");
    folder.write("tasks/s/8.json", task("pending", "\"\xff\xfe\""));
    folder.write("tasks/s/9.json", R"({"subject":"no status"})");
    folder.write("tasks/s/10.json", task("pending", R"("a")") + std::string(2 << 20, ' '));
    folder.write("tasks/s/11.json", R"({"a":{"b":{}} "status":"pending"})");
    folder.write("tasks/s/12.json", R"({"status":"pending","a":{"b":{}})");
    folder.write("tasks/s/.highwatermark", "9");
    SkipTally skipped;
    EXPECT_EQ(store.progress("s", skipped), (Progress{.total = 1}));
    EXPECT_EQ(skipped,
              (SkipTally{.notRegular = 3, .tooLarge = 1, .unreadable = 0, .malformed = 7}));

    folder.write("tasks/1.json", task("pending", R"("a")"));
    folder.write("tasks/empty/note", "");
    folder.makeLink("tasks/linked", folder.at("tasks/s"));
    for (const char* id : {"missing", "empty", "linked", "1.json", "", ".", "..", "../tasks/s"}) {
        EXPECT_EQ(store.progress(id, skipped), std::nullopt) << id;
    }
}

}  // namespace
}  // namespace fleetwise::testing
