#include "ui/base/elided_label.h"

#include <QPainter>

namespace fleetwise {

namespace {

constexpr QStringView separator = u" · ";

}  // namespace

QString fittingText(const QString& text, const QFontMetrics& metrics, int width) {
    QString fitting = text;
    while (metrics.horizontalAdvance(fitting) > width) {
        const auto lastPart = fitting.lastIndexOf(separator);
        if (lastPart < 0) break;
        fitting.truncate(lastPart);
    }
    return metrics.elidedText(fitting, Qt::ElideRight, width);
}

ElidedLabel::ElidedLabel(QWidget* parent) : QLabel(parent) {
    setTextFormat(Qt::PlainText);
}

QSize ElidedLabel::minimumSizeHint() const {
    return {0, QLabel::minimumSizeHint().height()};
}

void ElidedLabel::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setPen(palette().color(foregroundRole()));
    const QRect area = contentsRect();
    painter.drawText(area, static_cast<int>(alignment()) | Qt::TextSingleLine,
                     fittingText(text(), fontMetrics(), area.width()));
}

QString ElidedLabel::firstPart() const {
    return text().left(text().indexOf(separator));
}

}  // namespace fleetwise
