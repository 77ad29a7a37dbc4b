#pragma once

#include "fleet/figure_table.h"

#include <QAbstractTableModel>

namespace fleetwise {

/// A FigureTable for a view. Rows that only moved up keep their place for who reads them.
class FigureTableModel final : public QAbstractTableModel {
    Q_OBJECT

public:
    using QAbstractTableModel::QAbstractTableModel;

    void setTable(FigureTable newTable);
    const FigureTable& table() const { return shownTable; }

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

private:
    void dropFirst(std::size_t count);
    void resize(const FigureTable& newTable);

    FigureTable shownTable;
};

}  // namespace fleetwise
