// fleetwise-screenshots: pictures of every window on a fleet of its own making, in several
// languages and looks, and what their texts lack.

#include "app/live_fleet.h"
#include "demo/demo_home.h"
#include "demo/player.h"
#include "foundation/user_defaults.h"
#include "localisation/pseudo_language.h"
#include "screenshots/window_shots.h"

#include <QApplication>
#include <QEventLoop>
#include <QLoggingCategory>
#include <QTimer>
#include <fmt/format.h>

#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <set>

namespace {

using namespace fleetwise;
using namespace fleetwise::screenshots;

constexpr int playedEvents = 60;

std::vector<Run> allRuns() {
    std::vector<Run> runs;
    for (const char* language : {"de", "en"}) {
        for (const char* mode : {"light", "dark"}) {
            runs.push_back({.name = QStringLiteral("%1-%2").arg(language, mode),
                            .language = language,
                            .mode = mode});
        }
    }
    for (const char* language : {"fr", "es", "it", "pl"})
        runs.push_back({.name = QString::fromLatin1(language), .language = language});
    runs.push_back({.name = QStringLiteral("wide"), .language = std::string(pseudoLanguage)});
    runs.push_back({.name = QStringLiteral("large"), .textScale = 2});
    return runs;
}

void letPass(int milliseconds) {
    QEventLoop loop;
    QTimer::singleShot(milliseconds, &loop, &QEventLoop::quit);
    loop.exec();
}

void print(const Run& run, const std::vector<TextFault>& faults) {
    std::set<std::string> lines;
    for (const TextFault& fault : faults) {
        lines.insert(fmt::format("  {} \"{}\" ({})",
                                 fault.kind == TextFault::Kind::cut ? "cut" : "untranslated",
                                 fault.text.toStdString(), fault.place.toStdString()));
    }
    fmt::print("{}: {} faults\n", run.name.toStdString(), lines.size());
    for (const std::string& line : lines)
        fmt::print("{}\n", line);
    std::fflush(stdout);
}

/// Describes a screen as large as that of most people.
QByteArray screenFile(const demo::DemoHome& home) {
    const std::string path = home.path() + "/screen.json";
    std::ofstream(path) << R"({"screens": [{"name": "screen", "x": 0, "y": 0, "width": 1920,
        "height": 1080, "logicalDpi": 96, "logicalBaseDpi": 96, "dpr": 1}]})";
    return QByteArray::fromStdString(path);
}

int fail(const std::string& message, int status = 1) {
    fmt::print(stderr, "fleetwise-screenshots: {}\n", message);
    return status;
}

/// Plays and takes the pictures of the runs of these names; of all where none is given.
int takePictures(QApplication& application, const demo::DemoHome& home, const QString& folder,
                 const std::set<QString>& wanted) {
    const std::string programs = QCoreApplication::applicationDirPath().toStdString();
    InMemoryUserDefaults defaults;
    Settings settings(defaults);
    settings.set(Settings::notificationsEnabled, false);
    settings.set(Settings::didCompleteOnboarding, true);
    LiveFleet fleet(defaults, settings);
    fleet.start([](const std::string&) {}, [](const Notification&) {});
    demo::Player player(home, programs + "/fleetwise-hook", 1);
    if (const auto added = player.addCodex(programs + "/fleetwise-demo-agent"); !added)
        return fail(added.error());
    for (int played = 0; played < playedEvents; ++played) {
        if (const auto done = player.playNext(); !done) return fail(done.error());
        letPass(60);
    }
    letPass(3000);
    WindowShots shots(application, fleet, folder);
    bool isFaultless = true;
    for (const Run& run : allRuns()) {
        if (!wanted.empty() && !wanted.contains(run.name)) continue;
        const auto faults = shots.take(run);
        print(run, faults);
        isFaultless = isFaultless && faults.empty();
    }
    return isFaultless ? 0 : 1;
}

}  // namespace

int main(int argumentCount, char** arguments) {
    const std::vector<std::string> words(arguments + 1, arguments + argumentCount);
    if (words.empty() || words.front().starts_with("-")) {
        fmt::print(stderr,
                   "usage: fleetwise-screenshots FOLDER [RUN]...\n"
                   "Writes FOLDER/RUN/WINDOW.png of every window and tells which texts are cut or "
                   "not translated.\n"
                   "Runs: de-light de-dark en-light en-dark fr es it pl wide large (all)\n");
        return 2;
    }
    std::set<QString> wanted;
    const std::vector<Run> known = allRuns();
    for (std::size_t index = 1; index < words.size(); ++index) {
        const QString name = QString::fromStdString(words[index]);
        if (std::ranges::find(known, name, &Run::name) == known.end())
            return fail(fmt::format("there is no run \"{}\"", words[index]), 2);
        wanted.insert(name);
    }
    const auto home = demo::DemoHome::make({.pid = ::getpid()});
    if (!home) return fail(home.error());
    for (const char* name : {"HOME", "XDG_CONFIG_HOME", "XDG_RUNTIME_DIR"})
        qputenv(name, home->path().c_str());
    // Nothing may reach the desktop of whoever takes the pictures.
    qputenv("DBUS_SESSION_BUS_ADDRESS", "disabled:");
    qputenv("QT_QPA_PLATFORM", "offscreen:configfile=" + screenFile(*home));
    QLoggingCategory::setFilterRules(QStringLiteral("qt.qpa.*=false\n*.debug=false"));
    QApplication application(argumentCount, arguments);
    QApplication::setQuitOnLastWindowClosed(false);
    return takePictures(application, *home,
                        QString::fromStdString(std::filesystem::absolute(words.front()).string()),
                        wanted);
}
