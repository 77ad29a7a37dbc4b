#pragma once

#include "monitor/fleet_monitor.h"
#include "ui/quota/quota_figures.h"
#include "ui/quota/quota_painting.h"

#include <QAbstractButton>

namespace fleetwise {

/// The quota windows in a slim strip across the main window. A click on it asks for more. Takes no
/// room where nothing is known or the user does not want to see it.
class QuotaStrip final : public QAbstractButton, private FleetMonitor::Observer {
    Q_OBJECT

public:
    /// The monitor outlives this.
    explicit QuotaStrip(FleetMonitor& monitor, QWidget* parent = nullptr);
    ~QuotaStrip() override;

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;
    bool hasHeightForWidth() const override { return true; }
    int heightForWidth(int width) const override;

protected:
    bool event(QEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void usageChanged() override { follow(); }
    void clockTicked() override { follow(); }
    void settingsChanged() override { follow(); }

    /// Works only while it can be seen.
    void follow();
    void setFigures(QuotaFigures newFigures);
    QuotaPlaces places(int ofWidth) const;

    FleetMonitor& monitor;
    QuotaFigures figures;
};

}  // namespace fleetwise
