#pragma once

#include <QStyledItemDelegate>

class QTableView;

namespace fleetwise {

class ArchiveModel;
struct ArchiveEntry;
struct Palette;

/// Paints the cells of the archive: what is selected as one row, and before each name the agent's
/// sign, where the session was started and the state of one that runs.
class ArchiveRowDelegate final : public QStyledItemDelegate {
    Q_OBJECT

public:
    /// The model outlives this; the view owns it.
    ArchiveRowDelegate(const ArchiveModel& givenModel, QTableView& givenView);

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;

    static int rowHeight(const QFontMetrics& metrics);
    /// What a cell or the heading above it has to write in.
    static QRect contentArea(const QRect& cell, int column);

private:
    void paintGround(QPainter& painter, const QStyleOptionViewItem& option,
                     const QModelIndex& index, const Palette& palette) const;
    void paintName(QPainter& painter, const QRect& area, const ArchiveEntry& entry,
                   const Palette& palette) const;

    const ArchiveModel& model;
    const QTableView& view;
};

}  // namespace fleetwise
