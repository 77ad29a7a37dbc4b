// The report, mostly through the real program on a home with recorded transcripts.

#include "app/cost_report.h"
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
                                         "1 Tool-Aufrufe, Ausgabe 363\n"
                                         "    Kosten:      0,05 $ abgerechnet, 0,07 $ API-Preis, "
                                         "0,27 $ ohne Cache\n"
                                         "    Tokens:      Eingabe 24, Ausgabe 363 (davon Denken "
                                         "0), Cache gelesen 48.000, Cache geschrieben 3.930 "
                                         "(5 min 900, 1 h 3.030, unbekannt 0)\n"
                                         "    Anfragen:    3 – claude-opus-5-5 3\n"
                                         "    Preise:      Die Agenten rechnen 21 % weniger ab"));
    EXPECT_THAT(report.output, HasSubstr("\nPreise:    Eingebaute Preisliste, Stand 27.08.2026\n"
                                         "           Die Agenten rechnen 21 % weniger ab"));
    EXPECT_THAT(report.output, HasSubstr("0 aktiv, 1 ruhend, 0 brauchen Aufmerksamkeit\n"));
}

TEST(Report, tellsMissingPricesAndWhatForksCopied) {
    SessionCost session{.billedUSD = 1.5};
    session.usage.byModel["claude-haiku-4-5"] = {.tally = {.input = 1'000'000}, .requests = 2};
    session.usage.byModel["claude-sonnet-5-5"] = {.tally = {.output = 7}, .requests = 1200};
    session.family = "1";
    for (const char* request : {"1", "2", "3"})
        session.trail.add(request);
    SessionCosts all;
    for (const char* id : {"fork", "4e39591d"}) {
        SessionCost other{.family = "1"};
        for (const char* request : {"1", *id == 'f' ? "9" : "2"})
            other.trail.add(request);
        all[id] = std::make_shared<SessionCost>(other);
    }
    ReportBlock block;
    addCosts(block, session, all, Prices::Book::builtIn());
    EXPECT_EQ(block.text,
              "    Kosten:      ≈ 1,50 $ + ? abgerechnet, 1,00 $ + ? API-Preis, 1,00 $ + ? ohne "
              "Cache\n"
              "    Tokens:      Eingabe 1.000.000, Ausgabe 7 (davon Denken 0), Cache gelesen 0, "
              "Cache geschrieben 0 (5 min 0, 1 h 0, unbekannt 0)\n"
              "    Anfragen:    1.202 – claude-sonnet-5-5 1.200, claude-haiku-4-5 2\n"
              "    Gemeinsam:   2 Anfragen mit 4e39591d, in Summen einmal gezählt\n"
              "    Ohne Preis:  claude-sonnet-5-5\n");
    ReportBlock unused;
    addCosts(unused, {}, {}, Prices::Book::builtIn());
    EXPECT_EQ(unused.text, "");
}

}  // namespace
}  // namespace fleetwise::testing
