#include "app/self_test.h"

#include "app/machine_checks.h"
#include "app/program_checks.h"
#include "localisation/localisation.h"
#include "support/temporary_directory.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace fleetwise::testing {
namespace {

CheckResult resultOf(const std::vector<Check>& checks, std::string_view name) {
    for (const Check& check : checks) {
        if (check.name == name) return check.run();
    }
    ADD_FAILURE() << "no check " << name;
    return {};
}

TEST(SelfTest, printsALineForEachCheckAndCountsThem) {
    const Check passing{"gut", [] { return CheckResult(); }};
    const Check noting{"fehlt", [] { return CheckResult{CheckOutcome::noted, "nicht da"}; }};
    const Check failing{"schlecht", [] {
                            Faults faults;
                            faults.expect(true, "nie");
                            faults.expect(false, "eins");
                            faults.expect(false, "zwei\n");
                            return faults.result();
                        }};
    const SelfTest good = SelfTest::run({passing, noting});
    EXPECT_TRUE(good.hasPassed);
    EXPECT_EQ(good.text,
              "ok   gut\n–    fehlt: nicht da\n"
              "2 Prüfungen: 1 bestanden, 0 fehlgeschlagen, 1 mit Hinweis\n");
    const SelfTest bad = SelfTest::run({failing, passing});
    EXPECT_FALSE(bad.hasPassed);
    EXPECT_EQ(bad.text,
              "FEHLER schlecht: eins; zwei \nok   gut\n"
              "2 Prüfungen: 1 bestanden, 1 fehlgeschlagen, 0 mit Hinweis\n");
}

TEST(SelfTest, passesOnThisProgram) {
    const TemporaryDirectory folder;
    const StringsTable english = loadStringsTable(sourceDirectory() + "/resources", "en");
    for (const char* language : {"de", "en"}) {
        setInterfaceLanguage(language, language == std::string("en") ? english : StringsTable());
        const SelfTest test =
            SelfTest::run(programChecks({language, english, english}, folder.path()));
        EXPECT_TRUE(test.hasPassed) << test.text;
    }
    setInterfaceLanguage("de", {});
    EXPECT_TRUE(std::filesystem::is_empty(folder.path()));
}

TEST(SelfTest, judgesTheTableOfTheLanguage) {
    const StringsTable english{{"Wartet", "Waiting"}, {"Noch %d", "%d left"}};
    const struct {
        const char* name;
        InterfaceTexts texts;
        CheckOutcome outcome;
    } rows[] = {
        {"no tables at all", {"de", {}, {}}, CheckOutcome::failed},
        {"no table for the language", {"fr", {}, english}, CheckOutcome::noted},
        {"complete",
         {"fr", {{"Wartet", "Attend"}, {"Noch %d", "Encore %d"}}, english},
         CheckOutcome::passed},
        {"a text is missing", {"fr", {{"Wartet", "Attend"}}, english}, CheckOutcome::failed},
        {"another placeholder",
         {"fr", {{"Wartet", "Attend"}, {"Noch %d", "Encore %@"}}, english},
         CheckOutcome::failed},
    };
    for (const auto& row : rows) {
        const CheckResult result = resultOf(programChecks(row.texts, ""), "Texte der Oberfläche");
        EXPECT_EQ(result.outcome, row.outcome) << row.name << ": " << result.reason;
    }
}

TEST(SelfTest, judgesTheStateFolder) {
    using std::filesystem::perms;
    const struct {
        const char* name;
        const char* file;  ///< what is put into the folder
        const char* contents;
        perms filePermissions;
        perms folderPermissions;
        CheckOutcome folder;
        CheckOutcome files;
    } rows[] = {
        {"sound", "hosts.json", "{}", perms(0600), perms(0700), CheckOutcome::passed,
         CheckOutcome::passed},
        {"open to others", "hosts.json", "{}", perms(0644), perms(0755), CheckOutcome::failed,
         CheckOutcome::failed},
        {"torn", "stalls.json", "[{", perms(0600), perms(0700), CheckOutcome::passed,
         CheckOutcome::failed},
        {"a backup of corrupt settings", "settings.backup.x.json", "[{", perms(0600), perms(0700),
         CheckOutcome::passed, CheckOutcome::passed},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const TemporaryDirectory folder;
        std::filesystem::permissions(folder.write(row.file, row.contents), row.filePermissions);
        std::filesystem::permissions(folder.path(), row.folderPermissions);
        const auto checks = machineChecks({.stateDirectory = folder.path()});
        EXPECT_EQ(resultOf(checks, "Zustandsordner").outcome, row.folder);
        EXPECT_EQ(resultOf(checks, "Eigene Dateien").outcome, row.files);
    }
    const TemporaryDirectory folder;
    const auto missing = machineChecks({.stateDirectory = folder.at("missing")});
    EXPECT_EQ(resultOf(missing, "Zustandsordner").outcome, CheckOutcome::passed);
    EXPECT_EQ(resultOf(missing, "Eigene Dateien").outcome, CheckOutcome::passed);
    folder.makeFifo("usage.json");
    EXPECT_EQ(resultOf(machineChecks({.stateDirectory = folder.path()}), "Eigene Dateien").outcome,
              CheckOutcome::failed);
}

}  // namespace
}  // namespace fleetwise::testing
