#pragma once

#include "app/machine_sources.h"
#include "app/session_commands.h"
#include "monitor/fleet_monitor.h"
#include "platform/qt_main_loop.h"
#include "platform/qt_process_launcher.h"
#include "reactions/attention_log.h"
#include "reactions/stall_watchdog.h"

#include <memory>

namespace fleetwise {

/// The monitor of this user's fleet with all that it works with, joined; nothing of it is seen.
/// Needs an application object. The members stand in the order in which they need each other: the
/// loop, when it goes, still waits for a pass that uses those above it.
class LiveFleet {
public:
    /// Both outlive this; `defaults` is only used here.
    LiveFleet(UserDefaults& defaults, Settings& settings);

    FleetMonitor& fleet() { return monitor; }

    /// Writes what is remembered. For the end of the program.
    void flush();

private:
    FleetMonitor::Environment environment();

    Settings& settings;
    MachineSources machine;
    FleetSnapshot::Shared shared;
    HostAppMemory hosts;
    AttentionLog attentionLog;
    QtMainLoop loop;
    StallWatchdog watchdog;
    std::unique_ptr<WindowFocus> windows;
    QtProcessLauncher launcher;
    SessionCommands commands;
    FleetMonitor monitor;
};

}  // namespace fleetwise
