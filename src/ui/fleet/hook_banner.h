#pragma once

#include "monitor/fleet_monitor.h"

#include <QFrame>

class QLabel;
class QPushButton;

namespace fleetwise {

/// Offers to install the hook while it is missing, and installs it only after a second yes that
/// says what is written where.
class HookBanner final : public QFrame, private FleetMonitor::Observer {
    Q_OBJECT

public:
    /// The monitor outlives this.
    explicit HookBanner(FleetMonitor& monitor, QWidget* parent = nullptr);
    ~HookBanner() override;

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    enum class Stage { offer, confirmation };

    void hookChanged() override;
    void setStage(Stage stage);
    void proceed();

    FleetMonitor& monitor;
    Stage stage = Stage::offer;
    QLabel* text;
    QPushButton* proceedButton;
    QPushButton* cancelButton;
};

}  // namespace fleetwise
