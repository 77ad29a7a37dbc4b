// The report through the real program, on a home with recorded transcripts.

#include "program_run.h"

#include <gmock/gmock.h>

#include <filesystem>

namespace fleetwise::testing {
namespace {

using ::testing::HasSubstr;

TEST(Report, saysInItsFixedWordsWhatWasRead) {
    const TemporaryDirectory home;
    const ProgramRun report = run(home, "--dump");
    EXPECT_EQ(report.exitStatus, 0);
    std::size_t from = 0;
    for (const char* text :
         {"Fleetwise — Diagnose\n", "\nRegistry   ",
          "\nStatus:    ", "\nDesktop:   ", "\nHooks:     NICHT installiert\n", "\nSprachen   ",
          "\n           gewählt: system", "   Oberfläche: de\n",
          "\n           Sparkle: ", "Aktualisierung: ", "\nSammlung:  ", " ms warm  (",
          " ms beim ersten Mal)\n", " ms  ", "\nHänger:    keine aufgezeichnet\n",
          "\nHook-Kopie: ", "\nKeine laufenden Sessions gefunden.\n"}) {
        const auto at = report.output.find(text, from);
        ASSERT_NE(at, std::string::npos) << text << "\nin\n" << report.output;
        from = at + 1;
    }
    EXPECT_FALSE(std::filesystem::exists(home.at(".claude"))) << "a report makes no folders";
    EXPECT_FALSE(std::filesystem::exists(home.at(".config")));
}

TEST(Report, listsRecordedSessionsAndStalls) {
    const TemporaryDirectory home;
    home.write(".claude/projects/-home-dev-work-demo/4e39591d.jsonl",
               contentsOf(dataPath("transcripts/background.jsonl")));
    home.write(".claude/fleetwise/stalls.json",
               R"([{"at":"2026-11-21T02:05:29.000Z","seconds":2.5,"sessions":12,"cpu":0.4}])");
    const ProgramRun report = run(home, "--dump");
    EXPECT_EQ(report.exitStatus, 0);
    EXPECT_THAT(report.output, HasSubstr("Hänger:    1 aufgezeichnet, jüngste zuerst\n"));
    EXPECT_THAT(report.output, HasSubstr("  2.5 s, davon 0.4 s Rechenzeit  bei 12 Sitzungen\n"));
    EXPECT_THAT(report.output, HasSubstr("\n    ID:          4e39591d\n"));
    EXPECT_THAT(report.output, HasSubstr("\n    Pfad:        /home/dev/work/demo\n"));
    EXPECT_THAT(report.output, HasSubstr("    Statistik: Kontext 9 % von 200.000, 3 Antworten, "
                                         "1 Tool-Aufrufe, Ausgabe 363\n"));
    EXPECT_THAT(report.output, HasSubstr("0 aktiv, 1 ruhend, 0 brauchen Aufmerksamkeit\n"));
}

}  // namespace
}  // namespace fleetwise::testing
