// Every switch through the real program: what it prints and how it ends.

#include "program_run.h"

#include <gmock/gmock.h>

#include <filesystem>

namespace fleetwise::testing {
namespace {

using ::testing::ContainsRegex;
using ::testing::HasSubstr;

TEST(Program, refusesWhatItCannotDo) {
    const TemporaryDirectory home;
    const struct {
        const char* arguments;
        int exitStatus;
        const char* errors;
    } rows[] = {
        {"--wolke", 2, "^Fleetwise: unbekannter Schalter --wolke\nBekannt sind: "},
        {"--write-iconset", 1, "Fehler: Es fehlt der Pfad"},
        {"--write-og-image /nowhere/a.png", 1, "Fehler: .*/nowhere/a.png"},
        {"--write-dmg-background /nowhere/a.png", 1, "Fehler: .*/nowhere/a.png"},
        {"--check-dmg-background /dev/null", 1, "Fehler: .*/dev/null"},
        {"--verify-licence a.b", 1, "Fehler: "},
        {"", 1, "kein Bildschirm gefunden.*\n.*--dump"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.arguments);
        const ProgramRun refused = run(home, row.arguments);
        EXPECT_EQ(refused.exitStatus, row.exitStatus);
        EXPECT_THAT(refused.errors, ContainsRegex(row.errors));
        EXPECT_EQ(refused.output, "");
    }
}

TEST(Program, drawsItsPicturesWithoutADisplay) {
    const TemporaryDirectory home;
    EXPECT_EQ(run(home, "--write-iconset '" + home.at("icons") + "'").exitStatus, 0);
    EXPECT_TRUE(std::filesystem::exists(home.at("icons/icon_512x512@2x.png")));
    EXPECT_EQ(run(home, "--write-og-image '" + home.at("og.png") + "'").exitStatus, 0);
    EXPECT_EQ(run(home, "--write-dmg-background '" + home.at("dmg.png") + "'").exitStatus, 0);
    EXPECT_EQ(run(home, "--check-dmg-background '" + home.at("dmg.png") + "'").exitStatus, 0);
    EXPECT_EQ(run(home, "--check-dmg-background '" + home.at("og.png") + "'").exitStatus, 1);
    EXPECT_THAT(run(home, "--dmg-layout").output, ContainsRegex("^600 400( [0-9]+)+\n$"));
}

TEST(Program, testsItself) {
    const TemporaryDirectory home;
    const ProgramRun test = run(home, "--selftest");
    EXPECT_EQ(test.exitStatus, 0) << test.output;
    EXPECT_THAT(test.output, HasSubstr("ok   "));
    EXPECT_FALSE(std::filesystem::exists(home.at(".claude"))) << "a test makes no folders";

    const ProgramRun probe = run(home, "--stall-probe");
    EXPECT_EQ(probe.exitStatus, 0);
    EXPECT_THAT(probe.output,
                ContainsRegex("^blockiert: [0-9]+\\.[0-9] s — aufgezeichnet: 1, zuletzt [23]\\."));
    EXPECT_FALSE(std::filesystem::exists(home.at(".claude")))
        << "a probe is no stall of the user's";
}

}  // namespace
}  // namespace fleetwise::testing
