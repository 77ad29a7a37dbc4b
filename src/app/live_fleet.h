#pragma once

#include "app/machine_sources.h"
#include "app/notifications_with_fallback.h"
#include "app/session_commands.h"
#include "cost/price_feed.h"
#include "fleet/archive_reader.h"
#include "monitor/archive_index.h"
#include "monitor/feed_update.h"
#include "monitor/fleet_monitor.h"
#include "platform/child_processes.h"
#include "platform/desktop_notifications.h"
#include "platform/login_start.h"
#include "platform/power_assertions.h"
#include "platform/qt_feed_download.h"
#include "platform/qt_http_poster.h"
#include "platform/qt_main_loop.h"
#include "platform/qt_process_launcher.h"
#include "platform/qt_program_output.h"
#include "reactions/action_runner.h"
#include "reactions/attention_log.h"
#include "reactions/stall_watchdog.h"
#include "reactions/stay_awake.h"
#include "reactions/webhook.h"
#include "ui/settings/settings_services.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace fleetwise {

/// The monitor of this user's fleet with all that it works with, joined; nothing of it is seen.
/// Needs an application object. The members stand in the order in which they need each other: the
/// loop, when it goes, still waits for a pass that uses those above it.
class LiveFleet {
public:
    /// Both outlive this.
    LiveFleet(UserDefaults& defaults, Settings& settings);

    /// Once. `newVersion` is called with each newer version of the program that the feed lists,
    /// `show` with what the user is to be notified of while the desktop cannot.
    void start(std::function<void(const std::string&)> newVersion,
               NotificationsWithFallback::Show show);

    FleetMonitor& fleet() { return monitor; }

    ArchiveIndex& pastSessions() { return archive; }
    SettingsServices settingsServices();

    /// Writes what is remembered. For the end of the program.
    void flush();

private:
    FleetMonitor::Environment environment();
    std::vector<AttentionEpisode> waitingEpisodes(Date since, Date now);

    Settings& settings;
    MachineSources machine;
    FleetSnapshot::Shared shared;
    HostAppMemory hosts;
    CostStore& costs;
    PriceSettings prices;
    PriceFeed priceFeed;
    UsageCollector usage;
    AttentionLog attentionLog;
    StateTimeline timeline;
    ArchiveReader archiveReader;
    QtMainLoop loop;
    StallWatchdog watchdog;
    std::unique_ptr<WindowFocus> windows;
    QtProcessLauncher launcher;
    QtProgramOutput programs;
    SessionCommands commands;
    DesktopNotifications desktopNotifications;
    NotificationsWithFallback notifications;
    Notifier notifier;
    std::unique_ptr<ChildProcesses> children;
    SoundPlayer sounds;
    ActionRunner actions;
    QtHttpPoster poster;
    Webhook webhook;
    SystemPowerAssertions power;
    StayAwake stayAwake;
    ArchiveIndex archive;
    std::unique_ptr<LoginStart> loginStart;
    FleetMonitor monitor;
    QtFeedDownload download;
    FeedUpdate feed;
    std::string toldVersion;
};

}  // namespace fleetwise
