#include "ui/base/plain_table.h"

#include "ui/base/theme.h"

#include <QEvent>
#include <QHeaderView>
#include <QScrollBar>

#include <algorithm>

namespace fleetwise {

namespace {

constexpr int fewestCharacters = 10;  ///< in a column

}  // namespace

PlainTable::PlainTable(const QString& name, int givenMostRows, QWidget* parent)
    : QTableView(parent), mostRows(givenMostRows) {
    setAccessibleName(name);
    setShowGrid(false);
    setTabKeyNavigation(false);
    setWordWrap(false);
    setFrameShape(QFrame::NoFrame);
    setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    verticalHeader()->hide();
    horizontalHeader()->setHighlightSections(false);
    horizontalHeader()->setSectionResizeMode(QHeaderView::ResizeToContents);
    fitRows();
}

void PlainTable::setModel(QAbstractItemModel* newModel) {
    QTableView::setModel(newModel);
    for (const auto signal : {&QAbstractItemModel::rowsInserted, &QAbstractItemModel::rowsRemoved})
        connect(newModel, signal, this, [this] { updateGeometry(); });
    connect(newModel, &QAbstractItemModel::modelReset, this, [this] { updateGeometry(); });
}

QSize PlainTable::sizeHint() const {
    return {horizontalHeader()->length(), wantedHeight()};
}

QSize PlainTable::minimumSizeHint() const {
    return {0, wantedHeight()};
}

int PlainTable::wantedHeight() const {
    const int rows = model() == nullptr ? 0 : std::min(model()->rowCount(), mostRows);
    const bool hasBar = horizontalScrollBar()->maximum() > 0;
    return horizontalHeader()->sizeHint().height() + rows * verticalHeader()->defaultSectionSize() +
           (hasBar ? horizontalScrollBar()->sizeHint().height() : 0);
}

void PlainTable::updateGeometries() {
    QTableView::updateGeometries();
    // A narrow table also needs the place for its scroll bar.
    if (const int height = wantedHeight(); height != lastHeight) {
        lastHeight = height;
        updateGeometry();
    }
}

void PlainTable::fitRows() {
    verticalHeader()->setDefaultSectionSize(fontMetrics().height() + Metrics::gap);
    horizontalHeader()->setMinimumSectionSize(fontMetrics().averageCharWidth() * fewestCharacters);
}

void PlainTable::changeEvent(QEvent* event) {
    QTableView::changeEvent(event);
    if (event->type() != QEvent::FontChange) return;
    fitRows();
    updateGeometry();
}

}  // namespace fleetwise
