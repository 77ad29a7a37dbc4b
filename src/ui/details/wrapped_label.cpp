#include "ui/details/wrapped_label.h"

#include "ui/details/text_measure.h"

#include <QPainter>

namespace fleetwise {

WrappedLabel::WrappedLabel(QWidget* parent) : QLabel(parent) {
    setTextFormat(Qt::PlainText);
    QSizePolicy policy(QSizePolicy::Preferred, QSizePolicy::Preferred);
    policy.setHeightForWidth(true);
    setSizePolicy(policy);
}

void WrappedLabel::setMostLines(int lines) {
    mostLines = lines;
    updateGeometry();
    update();
}

QSize WrappedLabel::sizeHint() const {
    const WrappedText wrapped(text(), font(), QWIDGETSIZE_MAX);
    return {wrapped.naturalWidth(), wrapped.height(mostLines)};
}

QSize WrappedLabel::minimumSizeHint() const {
    return {0, fontMetrics().lineSpacing()};
}

int WrappedLabel::heightForWidth(int width) const {
    return WrappedText(text(), font(), width).height(mostLines);
}

void WrappedLabel::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setPen(palette().color(foregroundRole()));
    WrappedText(text(), font(), width()).draw(painter, {0, 0}, mostLines);
}

}  // namespace fleetwise
