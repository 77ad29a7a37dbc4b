#include "ui/settings/page_list_delegate.h"

#include "ui/base/theme.h"

#include <QPainter>

namespace fleetwise {

QSize PageListDelegate::sizeHint(const QStyleOptionViewItem& option,
                                 const QModelIndex& index) const {
    const QFontMetrics metrics(emphasisedFont(option.font));
    return {metrics.horizontalAdvance(index.data().toString()) + 3 * Metrics::margin,
            metrics.height() + Metrics::margin};
}

void PageListDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                             const QModelIndex& index) const {
    const Palette colours = paletteOf(option.palette);
    const bool isChosen = option.state.testFlag(QStyle::State_Selected);
    const bool hasKeyboard = isChosen && option.state.testFlag(QStyle::State_Active) &&
                             option.widget != nullptr && option.widget->hasFocus();
    const bool isHovered = option.state.testFlag(QStyle::State_MouseOver);
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    if (isChosen || isHovered) {
        painter->setPen(Qt::NoPen);
        painter->setBrush(hasKeyboard ? colours.accent
                          : isChosen  ? colours.hairline
                                      : colours.hover);
        painter->drawRoundedRect(option.rect, Metrics::rowRadius, Metrics::rowRadius);
    }
    painter->setPen(hasKeyboard ? colours.accentText : colours.text);
    painter->setFont(isChosen ? emphasisedFont(option.font) : option.font);
    painter->drawText(option.rect.adjusted(Metrics::margin, 0, -Metrics::grid, 0),
                      Qt::AlignVCenter | Qt::AlignLeading, index.data().toString());
    painter->restore();
}

}  // namespace fleetwise
