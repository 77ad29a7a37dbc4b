#pragma once

class QMenu;
class QWidget;

namespace fleetwise {

class FleetMonitor;

/// The menu of what the list and the windows look like. Shows the settings as they are whenever it
/// opens. The monitor outlives it.
QMenu* makeViewMenu(FleetMonitor& monitor, QWidget* parent);

}  // namespace fleetwise
