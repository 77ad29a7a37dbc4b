#pragma once

#include "monitor/fleet_monitor.h"

#include <QWidget>

#include <map>

class QComboBox;
class QLineEdit;

namespace fleetwise {

class ChipButton;

/// What the list shows and how: search, filters, grouping, order and density.
class FilterBar final : public QWidget, private FleetMonitor::Observer {
    Q_OBJECT

public:
    /// The monitor outlives this.
    explicit FilterBar(FleetMonitor& monitor, QWidget* parent = nullptr);
    ~FilterBar() override;

    void focusSearch();
    void clearSearch();

signals:
    /// The user is through with the search field and wants to go to the list.
    void leftSearch();
    void usageWanted();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void settingsChanged() override { showSettings(); }
    void showSettings();
    void makeFilters();
    template <typename Modes>
    QComboBox* modeBox(const Modes& modes, const Setting<std::string_view>& setting,
                       const QString& name);

    FleetMonitor& monitor;
    QLineEdit* search;
    std::map<ListFilter, ChipButton*> filters;
    QComboBox* grouping;
    QComboBox* order;
    ChipButton* density;
};

}  // namespace fleetwise
