#pragma once

#include <functional>

class QMenu;
class QWidget;

namespace fleetwise {

class FleetMonitor;

/// What the view menu opens; see the signals of FleetWindow.
struct ViewMenuActions {
    std::function<void()> showUsage;
    std::function<void()> showArchive;
    std::function<void()> showSettings;
    std::function<void()> toggleDetails;
};

/// The menu of what the list and the windows look like. Shows the settings as they are whenever it
/// opens. The monitor outlives it.
QMenu* makeViewMenu(FleetMonitor& monitor, ViewMenuActions actions, QWidget* parent);

}  // namespace fleetwise
