#include "ui/fleet/list_division.h"

#include "ui/base/theme.h"

#include <QPainter>

#include <algorithm>

namespace fleetwise {

namespace {

class HairlineHandle final : public QSplitterHandle {
public:
    using QSplitterHandle::QSplitterHandle;

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter(this).fillRect(rect(), paletteOf(palette()).hairline);
    }
};

}  // namespace

ListDivision::ListDivision(QWidget* list, QWidget* pane, QWidget* parent) : QSplitter(parent) {
    setChildrenCollapsible(false);
    setHandleWidth(1);
    addWidget(list);
    addWidget(pane);
    setStretchFactor(0, 1);
    setStretchFactor(1, 0);
    connect(this, &QSplitter::splitterMoved, this, [this] { chosenWidth = sizes().back(); });
}

QSplitterHandle* ListDivision::createHandle() {
    return new HairlineHandle(orientation(), this);
}

void ListDivision::setPaneVisible(bool isVisible) {
    if (widget(1)->isHidden() != isVisible) return;
    widget(1)->setVisible(isVisible);
    arrange();
}

void ListDivision::resizeEvent(QResizeEvent* event) {
    QSplitter::resizeEvent(event);
    arrange();
}

void ListDivision::arrange() {
    if (widget(1)->isHidden()) return;
    const int pane = chosenWidth > 0 ? chosenWidth : widget(1)->sizeHint().width();
    setSizes({std::max(0, width() - handleWidth() - pane), pane});
}

}  // namespace fleetwise
