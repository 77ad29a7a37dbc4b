#pragma once

#include "ui/fleet/session_row_delegate.h"

#include <QStandardItemModel>
#include <QWidget>

namespace fleetwise {

/// The row of a made-up session that has a question, drawn as the list draws it.
class ExampleRow final : public QWidget {
    Q_OBJECT

public:
    explicit ExampleRow(QWidget* parent = nullptr);

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QModelIndex row() const { return model.index(0, 0); }
    QStyleOptionViewItem option() const;

    QStandardItemModel model;
    SessionRowDelegate delegate;
};

}  // namespace fleetwise
