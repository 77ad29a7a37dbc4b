#include "sources/codex_store.h"

#include "sources/codex_rollout.h"
#include "support/temporary_directory.h"

#include <gmock/gmock.h>

namespace fleetwise::testing {
namespace {

using ::testing::UnorderedElementsAre;

TEST(CodexStore, findsRolloutsByTheirNames) {
    const TemporaryDirectory folder;
    const TemporaryDirectory outside;
    for (const char* name :
         {"rollout-a.jsonl", "2026/11/21/rollout-b.jsonl", "rollout-folder.jsonl/rollout-c.jsonl",
          "rollout-d.jsonl.zst", "rollout-e.json", "rollout-f.jsonl.bak", "history.jsonl"}) {
        folder.write(name, "");
    }
    folder.makeLink("rollout-g.jsonl", outside.write("rollout-h.jsonl", ""));
    folder.makeLink("linked", outside.path());
    folder.makeFifo("rollout-i.jsonl");
    folder.makeDirectory("rollout-j.jsonl.zst");
    SkipTally skipped;
    const CodexStore::Files files = CodexStore::files(folder.path(), skipped);
    const auto nameIs = [](const char* name) { return ::testing::Field(&FoundFile::name, name); };
    EXPECT_THAT(files.rollouts,
                UnorderedElementsAre(nameIs("rollout-a.jsonl"), nameIs("rollout-b.jsonl"),
                                     nameIs("rollout-c.jsonl")));
    EXPECT_THAT(files.compressed, UnorderedElementsAre(nameIs("rollout-d.jsonl.zst")));
    EXPECT_EQ(skipped, (SkipTally{.notRegular = 2}));
    EXPECT_TRUE(CodexStore::isAvailable(folder.at("linked")));
    EXPECT_FALSE(CodexStore::isAvailable(folder.at("rollout-a.jsonl")));
    EXPECT_FALSE(CodexStore::isAvailable(folder.at("missing")));
}

TEST(CodexStore, takesTheIdFromAName) {
    const std::string id = "01a1fbd8-98b9-7ae0-84bb-fe135ff7ce30";
    const std::string upperCase = "01A1FBD8-98B9-7AE0-84BB-FE135FF7CE30";
    const std::pair<std::string, std::string> rows[] = {
        {"rollout-2026-11-21T02-03-58-" + id + ".jsonl", id},
        {"rollout-2026-11-21T02-03-58-" + id + ".jsonl.zst", id},
        {"rollout-" + upperCase + ".jsonl", upperCase},
        {"rollout-plain.jsonl", "plain"},
        {"rollout-" + id + "x.jsonl", id + "x"},
    };
    for (const auto& [name, expected] : rows)
        EXPECT_EQ(CodexStore::idInName(name), expected) << name;
}

TEST(CodexStore, believesTheLastNameOfAThread) {
    const std::string text = contentsOf(dataPath("rollouts/session_index.jsonl")) +
                             R"({"id":"a","thread_name":"first"}
{"id":"a","thread_name":" last ","updated_at":"2026-11-21T02:10:56Z"}
{"id":"a","thread_name":"  "}
{"id":"a","thread_name":null}
{"id":"b","thread_name":"to

[]
{"id":"c","thread_name":7}
{"id":7,"thread_name":"d"}
{"thread_name":"e","id":"e"}
{"id":"f","thread_name":"unfinished)";
    const CodexStore::ThreadNames expected{
        {"01a1fbde-c245-7133-8a95-e829554bbe9a", "Codex lab name"}, {"a", "last"}, {"e", "e"}};
    EXPECT_EQ(CodexStore::threadNames(padded(text)), expected);
}

TEST(CodexStore, tellsWhereASessionRuns) {
    using Text = std::optional<std::string>;
    const struct {
        Text originator;
        Text source;
        SessionOrigin origin;
        Text host;
    } rows[] = {
        {"Codex Desktop", "vscode", SessionOrigin::desktop, "com.openai.codex"},
        {" codex_DESKTOP_app\n", {}, SessionOrigin::desktop, "com.openai.codex"},
        {"codex-tui", "vscode", SessionOrigin::cli, {}},
        {" Codex_Exec ", "cursor", SessionOrigin::cli, {}},
        {"codex_cli_rs", "vscode", SessionOrigin::cli, {}},
        {"codex_vscode", "VSCode", SessionOrigin::cli, "com.microsoft.VSCode"},
        {{}, "Cursor", SessionOrigin::cli, "com.todesktop.230313mzl4w4u92"},
        {"codex_cli", "exec", SessionOrigin::cli, {}},
        {{}, {}, SessionOrigin::cli, {}},
    };
    for (const auto& row : rows) {
        CodexRollout rollout;
        rollout.originator = row.originator;
        rollout.source = row.source;
        EXPECT_EQ(CodexStore::attribution(rollout), std::pair(row.origin, row.host))
            << row.originator.value_or("-") << " " << row.source.value_or("-");
    }
}

}  // namespace
}  // namespace fleetwise::testing
