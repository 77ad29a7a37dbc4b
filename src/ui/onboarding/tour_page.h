#pragma once

#include "monitor/fleet_monitor.h"
#include "ui/onboarding/onboarding_page.h"

namespace fleetwise {

/// What there is to see: the mark, a session's row and the signs of the states, drawn as they will
/// be, and what runs right now.
class TourPage final : public OnboardingPage, private FleetMonitor::Observer {
    Q_OBJECT

public:
    /// The monitor outlives this.
    explicit TourPage(FleetMonitor& monitor, QWidget* parent = nullptr);
    ~TourPage() override;

private:
    void fleetChanged() override;

    FleetMonitor& monitor;
    QLabel* running;
};

}  // namespace fleetwise
