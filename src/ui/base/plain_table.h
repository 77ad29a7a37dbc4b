#pragma once

#include <QTableView>

namespace fleetwise {

/// A table that reads like text: without frame, grid and row numbers. It is as high as its rows, so
/// that the page around it scrolls, up to a number of rows of which it scrolls the rest itself.
class PlainTable final : public QTableView {
    Q_OBJECT

public:
    /// `name` is for screen readers.
    explicit PlainTable(const QString& name, int mostRows, QWidget* parent = nullptr);

    void setModel(QAbstractItemModel* model) override;

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void changeEvent(QEvent* event) override;
    void updateGeometries() override;

private:
    void fitRows();
    int wantedHeight() const;

    const int mostRows;
    int lastHeight = 0;
};

}  // namespace fleetwise
