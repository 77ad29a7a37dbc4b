#include "ui/base/figure_table_model.h"

#include "ui/base/interface_text.h"

#include <algorithm>

namespace fleetwise {

namespace {

bool isFigure(const FigureTable::Cell& cell) {
    return cell.number.has_value();
}

int lengthOf(const std::vector<FigureTable::Row>& rows) {
    return static_cast<int>(rows.size());
}

}  // namespace

void FigureTableModel::setTable(FigureTable newTable) {
    if (newTable == shownTable) return;
    if (newTable.headings != shownTable.headings) {
        beginResetModel();
        shownTable = std::move(newTable);
        endResetModel();
        return;
    }
    if (!newTable.rows.empty()) {
        const auto first = std::ranges::find(shownTable.rows, newTable.rows.front());
        if (first != shownTable.rows.end())
            dropFirst(static_cast<std::size_t>(first - shownTable.rows.begin()));
    }
    resize(newTable);
    for (std::size_t row = 0; row < newTable.rows.size(); ++row) {
        if (shownTable.rows[row] == newTable.rows[row]) continue;
        shownTable.rows[row] = std::move(newTable.rows[row]);
        const int place = static_cast<int>(row);
        emit dataChanged(index(place, 0), index(place, columnCount() - 1));
    }
    shownTable.title = newTable.title;
}

void FigureTableModel::dropFirst(std::size_t count) {
    if (count == 0) return;
    beginRemoveRows({}, 0, static_cast<int>(count) - 1);
    shownTable.rows.erase(shownTable.rows.begin(),
                          shownTable.rows.begin() + static_cast<std::ptrdiff_t>(count));
    endRemoveRows();
}

void FigureTableModel::resize(const FigureTable& newTable) {
    const int before = lengthOf(shownTable.rows);
    const int after = lengthOf(newTable.rows);
    if (after > before) {
        beginInsertRows({}, before, after - 1);
        shownTable.rows.insert(shownTable.rows.end(), newTable.rows.begin() + before,
                               newTable.rows.end());
        endInsertRows();
    } else if (after < before) {
        beginRemoveRows({}, after, before - 1);
        shownTable.rows.resize(newTable.rows.size());
        endRemoveRows();
    }
}

int FigureTableModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : lengthOf(shownTable.rows);
}

int FigureTableModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(shownTable.headings.size());
}

QVariant FigureTableModel::data(const QModelIndex& index, int role) const {
    if (!checkIndex(index, CheckIndexOption::IndexIsValid)) return {};
    const auto& row = shownTable.rows[static_cast<std::size_t>(index.row())];
    const auto column = static_cast<std::size_t>(index.column());
    if (column >= row.size()) return {};
    if (role == Qt::DisplayRole) return qtText(row[column].text);
    if (role == Qt::TextAlignmentRole) {
        return QVariant::fromValue(Qt::AlignVCenter |
                                   (isFigure(row[column]) ? Qt::AlignRight : Qt::AlignLeft));
    }
    return {};
}

QVariant FigureTableModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal) return {};
    if (section < 0 || section >= columnCount()) return {};
    const auto column = static_cast<std::size_t>(section);
    if (role == Qt::DisplayRole) return qtText(shownTable.headings[column]);
    if (role != Qt::TextAlignmentRole) return {};
    const bool isOfFigures = std::ranges::any_of(shownTable.rows, [column](const auto& row) {
        return column < row.size() && isFigure(row[column]);
    });
    return QVariant::fromValue(Qt::AlignVCenter | (isOfFigures ? Qt::AlignRight : Qt::AlignLeft));
}

}  // namespace fleetwise
