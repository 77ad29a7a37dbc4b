#include "ui/base/flow_layout.h"

#include "ui/base/theme.h"

#include <QWidget>

#include <algorithm>

namespace fleetwise {

FlowLayout::FlowLayout(Qt::Alignment givenSide, QWidget* parent)
    : QLayout(parent), side(givenSide) {
    setContentsMargins(0, 0, 0, 0);
    setSpacing(Metrics::gap);
}

FlowLayout::~FlowLayout() = default;

void FlowLayout::insertWidget(int index, QWidget* widget) {
    addChildWidget(widget);
    items.insert(items.begin() + index, std::make_unique<QWidgetItem>(widget));
    invalidate();
}

void FlowLayout::addItem(QLayoutItem* item) {
    items.emplace_back(item);
}

QLayoutItem* FlowLayout::itemAt(int index) const {
    const bool isThere = index >= 0 && index < count();
    return isThere ? items[static_cast<std::size_t>(index)].get() : nullptr;
}

QLayoutItem* FlowLayout::takeAt(int index) {
    if (itemAt(index) == nullptr) return nullptr;
    QLayoutItem* item = items[static_cast<std::size_t>(index)].release();
    items.erase(items.begin() + index);
    return item;
}

std::vector<FlowLayout::Row> FlowLayout::rows(int width) const {
    std::vector<Row> all;
    for (const auto& item : items) {
        if (item->isEmpty()) continue;
        const QSize size = item->sizeHint().boundedTo({width, item->sizeHint().height()});
        const bool fits =
            !all.empty() && all.back().size.width() + spacing() + size.width() <= width;
        if (!fits) all.emplace_back();
        Row& row = all.back();
        const int before = row.items.empty() ? 0 : row.size.width() + spacing();
        row.items.push_back(item.get());
        row.size = {before + size.width(), std::max(row.size.height(), size.height())};
    }
    return all;
}

int FlowLayout::heightForWidth(int width) const {
    const QMargins around = contentsMargins();
    int height = 0;
    for (const Row& row : rows(width - around.left() - around.right()))
        height += row.size.height() + (height > 0 ? spacing() : 0);
    return height + around.top() + around.bottom();
}

QSize FlowLayout::sizeHint() const {
    constexpr int unbounded = 1 << 20;
    QSize size;
    for (const Row& row : rows(unbounded))
        size = size.expandedTo(row.size);
    return size.grownBy(contentsMargins());
}

QSize FlowLayout::minimumSize() const {
    QSize size(0, 0);
    for (const auto& item : items) {
        if (!item->isEmpty()) size = size.expandedTo(item->minimumSize());
    }
    return size.grownBy(contentsMargins());
}

void FlowLayout::setGeometry(const QRect& rect) {
    QLayout::setGeometry(rect);
    const QRect area = rect.marginsRemoved(contentsMargins());
    int top = area.top();
    for (const Row& row : rows(area.width())) {
        int left =
            side.testFlag(Qt::AlignRight) ? area.right() + 1 - row.size.width() : area.left();
        for (QLayoutItem* item : row.items) {
            const QSize hint = item->sizeHint();
            const QSize size(std::min(hint.width(), area.width()), hint.height());
            item->setGeometry({QPoint(left, top + (row.size.height() - size.height()) / 2), size});
            left += size.width() + spacing();
        }
        top += row.size.height() + spacing();
    }
}

}  // namespace fleetwise
