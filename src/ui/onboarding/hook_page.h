#pragma once

#include "monitor/fleet_monitor.h"
#include "ui/onboarding/onboarding_page.h"

class QPushButton;

namespace fleetwise {

class StateSign;

/// What is written, and the offer to install the hook: it says what that writes before it is done,
/// and what came of it.
class HookPage final : public OnboardingPage, private FleetMonitor::Observer {
    Q_OBJECT

public:
    /// The monitor outlives this.
    explicit HookPage(FleetMonitor& monitor, QWidget* parent = nullptr);
    ~HookPage() override;

private:
    QWidget* makeOffer();
    void hookChanged() override;

    FleetMonitor& monitor;
    QLabel* explanation;
    QPushButton* installButton;
    StateSign* sign;
    QLabel* outcome;
};

}  // namespace fleetwise
