#include "sources/desktop_metadata_store.h"

#include "foundation/regular_file.h"
#include "support/temporary_directory.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <map>

namespace fleetwise::testing {
namespace {

TEST(DesktopMetadata, isSpoiledByAKnownKeyOfAWrongTypeOnly) {
    const std::pair<std::string, DesktopMetadata> rows[] = {
        {R"({"sessionId":"local_1","cliSessionId":"s","title":"Umbau","cwd":"/srv/demo",
             "model":"claude-opus-5-5","effort":"high","permissionMode":"plan",
             "lastActivityAt":1795226672500,"isArchived":true,"error":"rate_limit",
             "errorAt":1795226670,"mcp":[{"title":7}]})",
         {.cliSessionId = "s",
          .title = "Umbau",
          .cwd = "/srv/demo",
          .model = "claude-opus-5-5",
          .effort = "high",
          .permissionMode = "plan",
          .lastActivityAt = dateFromSeconds(1'795'226'672.5),
          .isArchived = true,
          .error = "rate_limit",
          .errorAt = dateFromSeconds(1'795'226'670)}},
        {R"({"cliSessionId":" ","title":"\t","error":null,"isArchived":null,"errorAt":-1})",
         {.errorAt = dateFromSeconds(-1)}},
    };
    for (const auto& [text, expected] : rows)
        EXPECT_EQ(DesktopMetadataStore::decode(padded(text)), expected) << text;
    for (const std::string member :
         {R"("model":5)", R"("error":{"code":1})", R"("isArchived":1)", R"("errorAt":"now")",
          R"("errorAt":1e999)", R"("title":"Um)", R"("title":"a"},{)", "\"title\":\"\xff\""}) {
        const std::string text = R"({"cliSessionId":"s",)" + member + "}";
        EXPECT_EQ(DesktopMetadataStore::decode(padded(text)), std::nullopt) << member;
    }
}

TEST(DesktopMetadataStore, readsAFileOncePerChange) {
    const TemporaryDirectory folder;
    const TemporaryDirectory outside;
    const std::string valid = R"({"cliSessionId":"outside"})";
    folder.write("local_a.json", R"({"cliSessionId":"a","title":"A"})");
    folder.write("account/organisation/local_b.json", R"({"cliSessionId":"b"})");
    folder.write("local_anonymous.json", R"({"title":"N"})");
    folder.write("local_broken.json", "{");
    folder.write("remote_c.json", valid);
    folder.write("local_c.json.bak", valid);
    folder.makeLink("local_d.json", outside.write("local_d.json", valid));
    folder.makeLink("linked", outside.path());
    folder.makeFifo("local_e.json");
    DesktopMetadataStore store;
    const auto load = [&](std::uint64_t opens) {
        SkipTally skipped;
        const ReadCounts before = readCounts();
        const DesktopSessions sessions = store.load(folder.path(), skipped);
        EXPECT_EQ(readCounts().opens - before.opens, opens);
        EXPECT_EQ(skipped.notRegular, 2U);
        std::string shown;
        for (const auto& [id, meta] : std::map(sessions.begin(), sessions.end()))
            shown += id + meta.title.value_or("-") + " ";
        return shown + std::to_string(skipped.malformed);
    };
    EXPECT_EQ(load(4), "aA b- 1");
    EXPECT_EQ(load(0), "aA b- 1") << "not even the broken one";
    folder.write("local_broken.json", R"({"cliSessionId":"c","title":"C"})");
    folder.write("local_a.json", R"({"cliSessionId":"a","title":"B"})");
    setModificationDate(folder.at("local_a.json"), dateFromSeconds(1'795'226'672));
    std::filesystem::remove_all(folder.at("account"));
    EXPECT_EQ(load(2), "aB cC 0");
    EXPECT_EQ(load(0), "aB cC 0");
}

TEST(DesktopMetadataStore, prefersTheLaterActivityOfOneSession) {
    const TemporaryDirectory folder;
    const char* activities[] = {"1795226672", "1795226673000", "1795226671", "null"};
    for (const std::string activity : activities) {
        folder.write("local_" + activity + ".json", R"({"cliSessionId":"s","lastActivityAt":)" +
                                                        activity + R"(,"title":")" + activity +
                                                        "\"}");
    }
    DesktopMetadataStore store;
    SkipTally skipped;
    EXPECT_EQ(store.load(folder.path(), skipped).at("s").title, "1795226673000");
}

}  // namespace
}  // namespace fleetwise::testing
