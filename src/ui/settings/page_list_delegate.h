#pragma once

#include <QStyledItemDelegate>

namespace fleetwise {

/// Paints the names of pages: the chosen one on a rounded ground, in the accent while the list has
/// the keyboard.
class PageListDelegate final : public QStyledItemDelegate {
    Q_OBJECT

public:
    using QStyledItemDelegate::QStyledItemDelegate;

    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;
    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;
};

}  // namespace fleetwise
