#pragma once

#include "fleet/figure_table.h"
#include "ui/charts/chart_legend.h"

#include <QWidget>

#include <functional>
#include <vector>

class QLabel;
class QTableView;
class QToolButton;

namespace fleetwise {

class ChartWidget;
class ElidedLabel;
class FigureTableModel;
class FlowLayout;

/// A subject of the usage window: heading, a summary in words, its chart with what the marker
/// stands at above it and a legend below, the same as a table, and the table as a file.
class FigureSection final : public QWidget {
    Q_OBJECT

public:
    /// Where a table is read first: its latest rows stand last, its largest first.
    enum class Reading { fromEnd, fromStart };

    /// Takes the chart.
    FigureSection(const QString& heading, ChartWidget* chart, QWidget* parent = nullptr);

    /// Puts a control beside the heading, behind those that are there. Takes it.
    void addControl(QWidget* control);

    /// Parts with " · " between them, each kept on one line; empty: none.
    void setSummary(const QString& text);
    /// Fainter: the figures are too old to rely on.
    void setStale(bool isStale);
    /// `makeTable` is called when the table is shown or saved.
    void setTable(std::function<FigureTable()> makeTable, Reading reading = Reading::fromEnd);
    /// What stands in place of chart and table; empty shows these.
    void setHint(const QString& hint);
    void setShowsTable(bool showsTable);

    /// See ChartLegend::setEntries; none: no legend.
    void setLegend(std::vector<ChartLegend::Entry> entries, bool hasRest);

protected:
    void changeEvent(QEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void layOut(const QString& heading);
    void showParts();
    void fitRows();
    void fillTable();
    void scroll();

    ChartWidget* chart;
    FlowLayout* controls;
    QLabel* headingLabel;
    QLabel* summary;
    QLabel* hintLabel;
    ElidedLabel* readout;
    ChartLegend* chartLegend;
    QTableView* view;
    FigureTableModel* model;
    std::function<FigureTable()> newTable;  ///< empty once the model has it
    QToolButton* exportButton;
    Reading reading = Reading::fromEnd;
    bool hasLegend = false;
    bool showsTable = false;
};

}  // namespace fleetwise
