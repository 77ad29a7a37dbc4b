#include "app/program_facts.h"

#include "app/program_version.h"
#include "foundation/brand.h"
#include "foundation/directory.h"
#include "localisation/localisation.h"
#include "sources/paths.h"

#include <QSettings>
#include <QStandardPaths>
#include <QString>
#include <fmt/format.h>
#include <nlohmann/json.hpp>
#include <openssl/crypto.h>
#include <pugixml.hpp>
#include <sqlite3.h>

namespace fleetwise {

namespace {

using Place = ProgramFacts::Place;
using Part = ProgramFacts::Part;

Place place(const std::string& path, Text purpose) {
    const std::string home = Paths::home() + '/';
    return {.path = path.starts_with(home) ? "~/" + path.substr(home.size()) : path,
            .purpose = localised(purpose)};
}

std::vector<Place> placesRead() {
    return {
        place(Paths::sessionsDir(), "welche Sitzungen von Claude Code laufen"_text),
        place(Paths::projectsDir(), "die Verläufe: Titel, letzte Nachricht und Tokens"_text),
        place(Paths::tasksDir(), "die Aufgabenlisten der Sitzungen"_text),
        place(Paths::promptHistoryFile(), "deine Prompts, um vorige Sitzungen zu finden"_text),
        place(Paths::settingsFile(), "ob der Hook eingerichtet ist"_text),
        place(Paths::claudeConfigurationFile(), "dein Plan und dein Kontingent"_text),
        place(Paths::desktopCodeSessions(), "Titel und Modelle der Claude-Desktop-App"_text),
        place(Paths::usageHistoryFile(), "das Kontingent, wie die Desktop-App es misst"_text),
        place(Paths::codexDir(), "Sitzungen und Namen von Codex"_text),
        place(Paths::goalsFile(), "die Ziele von Codex"_text),
        {".git/HEAD", localised("der Branch jedes Projekts"_text)},
        {"/proc", localised("ob ein Agent noch läuft und in welchem Fenster"_text)},
    };
}

/// Of QtUserDefaults.
std::string userDefaultsFile() {
    const auto name = QString::fromUtf8(Brand::bundleName.data(), Brand::bundleName.size());
    return QSettings(name, name).fileName().toStdString();
}

std::string autostartEntry() {
    const auto folder = QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation);
    return joinPath(folder.toStdString(), "autostart/fleetwise.desktop");
}

std::vector<Place> placesWritten() {
    const std::string backups = joinPath(Paths::stateDir(), "settings.backup.*.json");
    const std::string scripts = joinPath(Paths::stateDir(), "resume");
    return {
        place(Paths::statusDir(), "was der Hook von jeder Sitzung meldet"_text),
        place(joinPath(Paths::stateDir(), "locks"),
              "Sperren, damit der Hook nie zweimal zugleich schreibt"_text),
        place(Paths::installedHook(), "das Hook-Programm, wenn du es einrichtest"_text),
        place(Paths::settingsFile(), "die Einträge des Hooks, wenn du ihn einrichtest"_text),
        place(backups, "diese Datei, wie sie vor jeder Änderung war"_text),
        place(Paths::hostsFile(), "in welchem Programm eine Sitzung zuletzt lief"_text),
        place(Paths::costIndexFile(), "was die Sitzungen kosten, um nicht alles neu zu lesen"_text),
        place(Paths::archiveIndexFile(),
              "Titel voriger Sitzungen, um nicht alles neu zu lesen"_text),
        place(Paths::pricesFile(), "die Preise, die zuletzt geladen wurden"_text),
        place(Paths::usageSamplesFile(), "der Verlauf deines Kontingents, 14 Tage lang"_text),
        place(Paths::attentionLogFile(),
              "wie lange Sitzungen auf dich warteten, 90 Tage lang"_text),
        place(Paths::stallsFile(), "wann Fleetwise selbst nicht antwortete"_text),
        place(scripts, "das Skript, mit dem ein Terminal eine Sitzung fortsetzt"_text),
        place(joinPath(Paths::stateDir(), "application.lock"),
              "damit Fleetwise nur einmal läuft"_text),
        place(autostartEntry(), "der Start bei der Anmeldung, wenn du ihn einschaltest"_text),
        place(userDefaultsFile(), "deine Einstellungen"_text),
    };
}

/// Those that the program is linked with or that are compiled into it, by name.
std::vector<Part> partsOfTheProgram() {
    const auto version = [](int major, int minor, int patch) {
        return fmt::format("{}.{}.{}", major, minor, patch);
    };
    return {
        {"date", "MIT"},
        {"expected", "CC0-1.0"},
        {"fmt " + version(FMT_VERSION / 10'000, FMT_VERSION / 100 % 100, FMT_VERSION % 100), "MIT"},
        {"GNU C Library", "LGPL-2.1-or-later"},
        {"GNU C++ Library", "GPL-3.0-or-later WITH GCC-exception-3.1"},
        {"libxcb", "X11"},
        {"nlohmann_json " + version(NLOHMANN_JSON_VERSION_MAJOR, NLOHMANN_JSON_VERSION_MINOR,
                                    NLOHMANN_JSON_VERSION_PATCH),
         "MIT"},
        {std::string("OpenSSL ") + ::OpenSSL_version(OPENSSL_VERSION_STRING), "Apache-2.0"},
        {"pugixml " +
             version(PUGIXML_VERSION / 1'000, PUGIXML_VERSION / 10 % 100, PUGIXML_VERSION % 10),
         "MIT"},
        {std::string("Qt ") + qVersion(), "LGPL-3.0-only"},
        {"RapidJSON", "MIT"},
        {"simdjson", "Apache-2.0"},
        {std::string("SQLite ") + ::sqlite3_libversion(), "blessing"},
    };
}

}  // namespace

ProgramFacts programFacts() {
    return {.version = programVersion(),
            .read = placesRead(),
            .written = placesWritten(),
            .parts = partsOfTheProgram()};
}

}  // namespace fleetwise
