#include "ui/quota/quota_lines.h"

#include "ui/base/interface_text.h"
#include "ui/base/theme.h"

#include <QHelpEvent>
#include <QPainter>
#include <QToolTip>

namespace fleetwise {

QuotaLines::QuotaLines(QWidget* parent) : QWidget(parent) {
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    setVisible(false);
}

void QuotaLines::setFigures(const QuotaFigures& newFigures) {
    if (newFigures == figures) return;
    figures = newFigures;
    setAccessibleName(spokenText(figures));
    setVisible(!figures.blocks.empty());
    updateGeometry();
    update();
}

QuotaPlaces QuotaLines::places() const {
    return quotaPlaces(figures, QuotaArrangement::stacked, width(),
                       QFontMetrics(smallFont(font())));
}

QSize QuotaLines::sizeHint() const {
    return {0, places().height};
}

bool QuotaLines::event(QEvent* event) {
    if (event->type() != QEvent::ToolTip) return QWidget::event(event);
    const auto* help = static_cast<QHelpEvent*>(event);
    QToolTip::showText(help->globalPos(),
                       plainToolTip(explanationAt(figures, places(), help->pos())), this);
    return true;
}

void QuotaLines::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setFont(smallFont(font()));
    paintQuota(painter, figures, places(), palette());
}

}  // namespace fleetwise
