#pragma once

#include <functional>

class QMenu;
class QWidget;

namespace fleetwise {

class FleetMonitor;

/// The menu of what the list and the windows look like. Shows the settings as they are whenever it
/// opens. `showUsage` opens the usage window. The monitor outlives it.
QMenu* makeViewMenu(FleetMonitor& monitor, std::function<void()> showUsage, QWidget* parent);

}  // namespace fleetwise
