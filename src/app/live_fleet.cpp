#include "app/live_fleet.h"

#include "app/environment.h"
#include "app/feed_address.h"
#include "app/hook_jobs.h"
#include "app/program_facts.h"
#include "app/program_version.h"
#include "app/usage_places.h"
#include "platform/dock_badge.h"
#include "platform/host_window_focus.h"
#include "sources/paths.h"

#include <QCoreApplication>
#include <QStandardPaths>

#include <cstdio>
#include <utility>

namespace fleetwise {

namespace {

void ensureStateDirectories() {
    if (const auto made = Paths::ensureStateDirectories(); !made) {
        std::fprintf(stderr, "Fleetwise: %s: %s\n", Paths::statusDir().c_str(),
                     made.error().message().c_str());
    }
}

}  // namespace

LiveFleet::LiveFleet(UserDefaults& defaults, Settings& givenSettings)
    : settings(givenSettings),
      hosts(Paths::hostsFile(), defaults, currentDate()),
      costs(CostStore::shared()),
      prices(defaults, Paths::pricesFile(),
             [this](const Prices::Book& book) {
                 loop.post([this, book] { monitor.setPriceBook(book); });
             }),
      priceFeed(Paths::pricesFile(), prices),
      usage(usagePlacesOfThisUser(), UsageHistoryStore::shared(), QuotaNotice::shared()),
      attentionLog(Paths::attentionLogFile(), currentDate()),
      archiveReader({.projectsDirectory = Paths::projectsDir(),
                     .desktopDirectory = Paths::desktopCodeSessions(),
                     .codexDirectory = Paths::codexDir(),
                     .promptHistoryFile = Paths::promptHistoryFile(),
                     .titlesFile = Paths::archiveIndexFile()},
                    DesktopMetadataStore::shared()),
      watchdog(Paths::stallsFile(), [this](auto action) { loop.post(std::move(action)); }),
      windows(makeWindowFocus()),
      commands(settings, ProcessTable::system(), *windows, launcher, programs),
      desktopNotifications(
          QDBusConnection::sessionBus(),
          [this](const std::string& sessionId, NotificationAction action) {
              monitor.answerNotification(sessionId, action);
          },
          [this](const Notification& refused) { notifications.showHere(refused); }),
      notifications(desktopNotifications),
      notifier(notifications, currentCalendar(),
               [this](const Session& session, const std::vector<Session>& all) {
                   return commands.isFocused(session, all);
               }),
      children(makeChildProcesses()),
      sounds(*children, findProgram),
      actions(*children, currentDate),
      webhook(poster, programVersion(), currentDate),
      power(QDBusConnection::systemBus(), QDBusConnection::sessionBus()),
      stayAwake(power),
      archive(loop, {.list = [this](Date now) { return archiveReader.list(now); },
                     .complete =
                         [this](std::vector<ArchiveEntry> portion) {
                             return archiveReader.complete(std::move(portion), currentDate());
                         }}),
      loginStart(makeLoginStart(
          QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation).toStdString(),
          QCoreApplication::applicationFilePath().toStdString())),
      monitor(environment()),
      download(programVersion()),
      feed(loop, download, priceFeed, feedAddress(settings), programVersion()) {}

void LiveFleet::start(std::function<void(const std::string&)> newVersion,
                      NotificationsWithFallback::Show show) {
    notifications.setFallback(std::move(show));
    monitor.start();
    prices.load();
    feed.start([this, newVersion = std::move(newVersion)] {
        const std::string version = feed.newerVersion().value_or("");
        if (!version.empty() && std::exchange(toldVersion, version) != version) newVersion(version);
    });
}

SettingsServices LiveFleet::settingsServices() {
    return {.actions = actions,
            .sounds = sounds,
            .webhook = webhook,
            .prices = prices,
            .priceFeed = priceFeed,
            .feedUpdate = feed,
            .loginStart = *loginStart,
            .terminals = SessionCommands::terminals,
            .facts = programFacts,
            .settingsBackups = [] { return SettingsFile::backups(Paths::stateDir()); },
            .now = currentDate};
}

FleetMonitor::Environment LiveFleet::environment() {
    return {
        .loop = loop,
        .settings = settings,
        .collect = [this, sources = machine.sources()](
                       const FleetSnapshot::Input& input,
                       Date now) { return FleetSnapshot::collect(input, sources, shared, now); },
        .collectUsage = [this](const UsageCollector::Input& input,
                               Date now) { return usage.collect(input, now); },
        .readDetails = [reader = machine.detailsReader()](
                           const Session& session) { return reader.read(session); },
        .hook = hookPlacesOfThisUser(),
        .sessionsDirectory = Paths::sessionsDir(),
        .ensureStateDirectories = ensureStateDirectories,
        .hosts = hosts,
        .costs = costs,
        .notifier = notifier,
        .sounds = sounds,
        .waitingEpisodes = [this](Date since, Date now) { return waitingEpisodes(since, now); },
        .watchdog = watchdog,
        .timeline = timeline,
        .reactions = {&notifier, &sounds, &actions, &webhook, &attentionLog, &timeline, &stayAwake},
        .focus = [this](const Session& session) { return commands.focus(session); },
        .resume = [this](const Session& session) { return commands.resume(session); },
        .resumeText = [this](const Session& session) { return commands.resumeText(session); },
        .showDockBadge = showDockBadge,
        .calendar = currentCalendar(),
        .home = Paths::home(),
    };
}

std::vector<AttentionEpisode> LiveFleet::waitingEpisodes(Date since, Date now) {
    auto episodes = attentionLog.episodes(since);
    for (AttentionEpisode& open : attentionLog.openEpisodes(now))
        episodes.push_back(std::move(open));
    return episodes;
}

void LiveFleet::flush() {
    // The user may have removed the folder meanwhile.
    ensureStateDirectories();
    costs.stop();
    costs.save();
    const Date now = currentDate();
    attentionLog.flush(now);
    hosts.flush(now);
    archiveReader.flush();
}

}  // namespace fleetwise
