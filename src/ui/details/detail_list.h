#pragma once

#include "ui/details/detail_row.h"

#include <QWidget>

#include <vector>

class QToolButton;
class QVBoxLayout;

namespace fleetwise {

class DetailLine;

/// Rows below each other. A new state of them changes only what differs; of many rows the first
/// are shown until the rest is asked for.
class DetailList final : public QWidget {
    Q_OBJECT

public:
    explicit DetailList(QWidget* parent = nullptr);

    void setRows(const std::vector<DetailRow>& newRows);
    const std::vector<DetailRow>& rows() const { return shownRows; }

private:
    void showLines();

    std::vector<DetailRow> shownRows;
    std::vector<DetailLine*> lines;
    QVBoxLayout* column;
    QToolButton* more;
    bool showsAll = false;
};

}  // namespace fleetwise
