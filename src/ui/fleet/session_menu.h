#pragma once

#include <functional>
#include <string>
#include <vector>

class QPoint;
class QWidget;

namespace fleetwise {

class FleetMonitor;

/// Opens the menu of what can be done with a session. Does not wait for it to close. `activated`
/// is called after the session was focused or resumed.
void showSessionMenu(
    FleetMonitor& monitor, const std::string& sessionId, QWidget* parent,
    const QPoint& globalPosition, const std::function<void()>& activated = [] {});

/// As showSessionMenu, of what can be done with several at once; of one it is that menu.
void showSelectionMenu(FleetMonitor& monitor, const std::vector<std::string>& ids, QWidget* parent,
                       const QPoint& globalPosition);

}  // namespace fleetwise
