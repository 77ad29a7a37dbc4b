#include "sources/git_store.h"

#include "foundation/regular_file.h"
#include "support/temporary_directory.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace fleetwise::testing {
namespace {

using namespace std::chrono_literals;

const Date now = *parseInternetDate("2026-11-21T02:00:00.000Z");
const std::string onMain = "ref: refs/heads/main\n";

class GitStoreTest : public ::testing::Test {
protected:
    std::optional<std::string> branch(const std::string& name, Date date = now) {
        return store.branch(folder.at(name), date);
    }

    TemporaryDirectory folder;
    GitStore store;
};

TEST_F(GitStoreTest, readsTheHead) {
    const std::string hash = "0123456789abcdef0123456789abcdef01234567";
    const struct {
        const char* name;
        std::string head;
        std::optional<std::string> branch;
    } rows[] = {
        {"branch", "ref: refs/heads/feature/x\n", "feature/x"},
        {"without newline", "ref:refs/heads/main", "main"},
        {"other ref", "ref: refs/remotes/origin/main\n", "remotes/origin/main"},
        {"detached", hash + "\n", "0123456"},
        {"detached, SHA-256", hash + hash.substr(0, 24) + "\n", "0123456"},
        {"short hash", "0123456\n", std::nullopt},
        {"no ref", "ref: main\n", std::nullopt},
        {"refs in a table", "ref: refs/heads/.invalid\n", std::nullopt},
        {"nameless", "ref: refs/heads/\n", std::nullopt},
        {"further lines", "ref: refs/heads/main\nevil\n", "main"},
        {"not for a terminal", "ref: refs/heads/a\x1b[31m\xff\n", "a [31m\uFFFD"},
        {"empty", "", std::nullopt},
        {"huge", "ref: refs/heads/" + std::string(5000, 'x'), std::nullopt},
        {"text", "hello\n", std::nullopt},
    };
    int index = 0;
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const std::string cwd = std::to_string(index++);
        folder.write(cwd + "/.git/HEAD", row.head);
        EXPECT_EQ(branch(cwd), row.branch);
    }
}

TEST_F(GitStoreTest, findsTheRepositoryAround) {
    folder.write("repo/.git/HEAD", onMain);
    folder.write("repo/.git/worktrees/tree/HEAD", "ref: refs/heads/tree\n");
    folder.write("tree/.git", "gitdir: " + folder.at("repo/.git/worktrees/tree") + "\n");
    folder.write("repo/.git/modules/sub/HEAD", "ref: refs/heads/sub\n");
    folder.write("repo/sub/.git", "gitdir: ../.git/modules/sub");
    folder.makeDirectory("repo/hollow/.git");
    folder.write("repo/broken/.git", "gitdir:\n");
    folder.write("repo/text/.git", "hello");
    folder.write("repo/lost/.git", "gitdir: /nowhere");
    folder.write("repo/huge/.git", "gitdir: " + std::string(5000, 'x'));
    folder.makeLink("repo/link/.git", folder.at("repo/.git"));
    folder.makeFifo("repo/fifo/.git");
    folder.makeFifo("repo/fifo head/.git/HEAD");
    folder.makeLink("repo/linked head/.git/HEAD", folder.at("repo/.git/HEAD"));
    const struct {
        const char* cwd;
        std::optional<std::string> branch;
    } rows[] = {
        {"repo", "main"},
        {"repo/", "main"},
        {"repo/src/deleted/folder", "main"},
        {"repo/hollow", "main"},
        {"tree/src", "tree"},
        {"repo/sub", "sub"},
        {"", std::nullopt},
        {"repo/broken", std::nullopt},
        {"repo/text", std::nullopt},
        {"repo/lost", std::nullopt},
        {"repo/huge", std::nullopt},
        {"repo/link", std::nullopt},
        {"repo/fifo", std::nullopt},
        {"repo/fifo head", std::nullopt},
        {"repo/linked head", std::nullopt},
    };
    for (const auto& row : rows)
        EXPECT_EQ(branch(row.cwd), row.branch) << row.cwd;
    for (const auto& cwd : {std::string("relative"), std::string(), std::string(100'000, '/')})
        EXPECT_EQ(store.branch(cwd, now), std::nullopt);
}

TEST_F(GitStoreTest, readsTheHeadAgainOnlyWhenItHasChanged) {
    folder.write("repo/.git/HEAD", onMain);
    branch("repo/src");
    const ReadCounts before = readCounts();
    EXPECT_EQ(branch("repo/src", now + 29s), "main");
    EXPECT_EQ(branch("repo/src", now + 31s), "main");
    EXPECT_EQ(readCounts().opens, before.opens);
    folder.write("repo/.git/HEAD", "ref: refs/heads/other\n");
    EXPECT_EQ(branch("repo/src", now + 32s), "other");
    store.retain({folder.at("repo")});
    branch("repo/src", now + 33s);
    EXPECT_EQ(readCounts().opens - before.opens, 2U);
}

TEST_F(GitStoreTest, seesRepositoriesComeAndGo) {
    folder.makeDirectory("outer/inner");
    EXPECT_EQ(branch("outer/inner"), std::nullopt);
    folder.write("outer/inner/.git/HEAD", "ref: refs/heads/inner\n");
    EXPECT_EQ(branch("outer/inner", now + 1s), "inner");
    std::filesystem::remove_all(folder.at("outer/inner/.git"));
    folder.write("outer/.git/HEAD", onMain);
    EXPECT_EQ(branch("outer/inner", now + 2s), "main");
    folder.write("outer/inner/.git/HEAD", "ref: refs/heads/inner\n");
    EXPECT_EQ(branch("outer/inner", now + 32s), "inner");
    std::filesystem::remove_all(folder.at("outer"));
    EXPECT_EQ(branch("outer/inner", now + 33s), std::nullopt);
}

}  // namespace
}  // namespace fleetwise::testing
