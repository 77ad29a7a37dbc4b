#pragma once

#include <string>

class QPoint;
class QWidget;

namespace fleetwise {

class FleetMonitor;

/// Opens the menu of what can be done with a session. Does not wait for it to close.
void showSessionMenu(FleetMonitor& monitor, const std::string& sessionId, QWidget* parent,
                     const QPoint& globalPosition);

}  // namespace fleetwise
