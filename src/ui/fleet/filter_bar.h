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

    /// Room for the search and the view menu, which has all the rest.
    QSize minimumSizeHint() const override;

signals:
    /// The user is through with the search field and wants to go to the list.
    void leftSearch();
    // What the view menu opens.
    void usageWanted();
    void archiveWanted();
    void settingsWanted();
    void detailsToggled();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    void settingsChanged() override { showSettings(); }
    void showSettings();
    void makeFilters();
    void makeViewButton();
    void layOut();
    int leastSearchWidth() const;
    /// Hides what there is no room for, the least important first.
    void fit();
    void showHiddenFilters();
    template <typename Modes>
    QComboBox* modeBox(const Modes& modes, const Setting<std::string_view>& setting,
                       const QString& name);

    FleetMonitor& monitor;
    QLineEdit* search;
    std::map<ListFilter, ChipButton*> filters;
    QComboBox* grouping;
    QComboBox* order;
    ChipButton* density;
    ChipButton* view;
};

}  // namespace fleetwise
