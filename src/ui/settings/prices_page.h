#pragma once

#include "ui/settings/settings_page.h"
#include "ui/settings/settings_services.h"

class QPushButton;

namespace fleetwise {

class PlainTable;
class PriceTableModel;

/// What tokens cost: the price list with the user's own prices, or one rate for everything, and
/// whether newer prices come from the update feed.
class PricesPage final : public SettingsPage {
    Q_OBJECT

public:
    /// All that is given outlives this.
    PricesPage(FleetMonitor& monitor, const SettingsServices& services, QWidget* parent = nullptr);
    ~PricesPage() override;

    QString name() const override;

protected:
    void hideEvent(QHideEvent* event) override;

private:
    void addTable();
    void addFlatRate();
    void takeFlatRate();
    void wantFlatRate(bool isWanted);
    void askForReset();
    void showBook();
    void showFlatRate();
    void showFeed();
    QStringList feedLines() const;

    const SettingsServices services;
    PriceTableModel* model;
    QLabel* origin = nullptr;
    QLabel* comparison = nullptr;
    PlainTable* table = nullptr;
    QLabel* refusal = nullptr;
    QLabel* incomplete = nullptr;
    QPushButton* resetButton = nullptr;
    QCheckBox* flatSwitch = nullptr;
    Field flatRate;
    bool isAwaitingRate = false;  ///< the switch is on, and the field has no rate yet
    QLabel* feed = nullptr;
};

}  // namespace fleetwise
