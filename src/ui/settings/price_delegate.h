#pragma once

#include <QStyledItemDelegate>

namespace fleetwise {

/// Edits prices: a field that holds no price stays open when it is to be stored, and is left
/// without a change when the focus goes elsewhere.
class PriceDelegate final : public QStyledItemDelegate {
    Q_OBJECT

public:
    using QStyledItemDelegate::QStyledItemDelegate;

    QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem& option,
                          const QModelIndex& index) const override;

signals:
    /// Why the contents of the open field are refused; empty: they are not, or not any more.
    void faultChanged(const QString& fault) const;
};

}  // namespace fleetwise
