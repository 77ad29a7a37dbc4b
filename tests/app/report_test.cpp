// The report through the real program, on a home with recorded transcripts.

#include "support/temporary_directory.h"

#include <gmock/gmock.h>

#include <sys/wait.h>

#include <array>
#include <cstdio>
#include <filesystem>

namespace fleetwise::testing {
namespace {

using ::testing::ContainsRegex;
using ::testing::HasSubstr;

struct Outcome {
    int exitStatus = -1;
    std::string output;  ///< standard output and standard error
};

/// Runs the program with `home` as the user's home and no language set.
Outcome run(const TemporaryDirectory& home, const std::string& argument) {
    const std::string command =
        "env -i HOME='" + home.path() + "' '" FLEETWISE_PROGRAM "' " + argument + " 2>&1";
    Outcome result;
    std::FILE* pipe = ::popen(command.c_str(), "r");
    if (pipe == nullptr) return result;
    std::array<char, 4096> block{};
    while (const std::size_t got = std::fread(block.data(), 1, block.size(), pipe)) {
        result.output.append(block.data(), got);
    }
    result.exitStatus = WEXITSTATUS(::pclose(pipe));
    return result;
}

TEST(Report, saysInItsFixedWordsWhatWasRead) {
    const TemporaryDirectory home;
    const Outcome report = run(home, "--dump");
    EXPECT_EQ(report.exitStatus, 0);
    std::size_t from = 0;
    for (const char* text :
         {"Fleetwise — Diagnose\n", "\nRegistry   ",
          "\nStatus:    ", "\nDesktop:   ", "\nHooks:     NICHT installiert\n", "\nSprachen   ",
          "\n           gewählt: system", "   Oberfläche: de\n",
          "\n           Sparkle: ", "Aktualisierung: ", "\nSammlung:  ", " ms warm  (",
          " ms beim ersten Mal)\n", " ms  ", "\nHänger:    keine aufgezeichnet\n", "aktuell\n",
          "\nKeine laufenden Sessions gefunden.\n"}) {
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
    const Outcome report = run(home, "--dump");
    EXPECT_EQ(report.exitStatus, 0);
    EXPECT_THAT(report.output, HasSubstr("Hänger:    1 aufgezeichnet, jüngste zuerst\n"));
    EXPECT_THAT(report.output, HasSubstr("  2.5 s, davon 0.4 s Rechenzeit  bei 12 Sitzungen\n"));
    EXPECT_THAT(report.output, HasSubstr("\n    ID:          4e39591d\n"));
    EXPECT_THAT(report.output, HasSubstr("\n    Pfad:        /home/dev/work/demo\n"));
    EXPECT_THAT(report.output, HasSubstr("    Statistik: Kontext 9 % von 200.000, 3 Antworten, "
                                         "1 Tool-Aufrufe, Ausgabe 363\n"));
    EXPECT_THAT(report.output, HasSubstr("0 aktiv, 1 ruhend, 0 brauchen Aufmerksamkeit\n"));
}

TEST(Program, refusesWhatItCannotDo) {
    const TemporaryDirectory home;
    const Outcome unknown = run(home, "--wolke");
    EXPECT_EQ(unknown.exitStatus, 2);
    EXPECT_THAT(unknown.output, HasSubstr("Fleetwise: unbekannter Schalter --wolke\nBekannt"));
    const Outcome later = run(home, "--selftest");
    EXPECT_EQ(later.exitStatus, 1);
    EXPECT_THAT(later.output, ContainsRegex("^Fehler: --selftest"));
}

}  // namespace
}  // namespace fleetwise::testing
