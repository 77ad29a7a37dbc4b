#include "ui/details/link_button.h"

#include "ui/base/drawing_box.h"
#include "ui/base/interface_text.h"
#include "ui/base/theme.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QPainter>
#include <QToolTip>

namespace fleetwise {

namespace {

constexpr double linkFocusWidth = 1.5;
constexpr int copySignSide = 14;

/// The ground of a button that has none of its own until it is pointed at or has the focus.
void paintButtonGround(QPainter& painter, const QToolButton& button, const Palette& colours) {
    painter.setRenderHint(QPainter::Antialiasing);
    const bool isHovered = button.underMouse() || button.isDown();
    if (!isHovered && !button.hasFocus()) return;
    painter.setPen(button.hasFocus() ? QPen(colours.accent, linkFocusWidth) : QPen(Qt::NoPen));
    painter.setBrush(isHovered ? QBrush(colours.hover) : QBrush(Qt::NoBrush));
    painter.drawRoundedRect(QRectF(button.rect()).adjusted(0.75, 0.75, -0.75, -0.75), Metrics::grid,
                            Metrics::grid);
}

}  // namespace

LinkButton::LinkButton(const QString& text, QWidget* parent) : QToolButton(parent) {
    setText(text);
    setFocusPolicy(Qt::StrongFocus);
    setCursor(Qt::PointingHandCursor);
}

QSize LinkButton::sizeHint() const {
    return {fontMetrics().horizontalAdvance(text()) + Metrics::grid,
            fontMetrics().height() + Metrics::grid};
}

void LinkButton::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    paintButtonGround(painter, *this, paletteOf(palette()));
    painter.setPen(palette().color(QPalette::Link));
    painter.drawText(rect(), Qt::AlignLeft | Qt::AlignVCenter, text());
}

CopyButton::CopyButton(QWidget* parent) : QToolButton(parent) {
    setFocusPolicy(Qt::StrongFocus);
    connect(this, &QToolButton::clicked, this, &CopyButton::copy);
}

void CopyButton::setCopied(const QString& text, const QString& name) {
    copied = text;
    setToolTip(name);
    setAccessibleName(name);
}

QSize CopyButton::sizeHint() const {
    const int side = std::max(copySignSide + Metrics::gap, fontMetrics().height() + Metrics::grid);
    return {side, side};
}

void CopyButton::copy() {
    QGuiApplication::clipboard()->setText(copied);
    QToolTip::showText(mapToGlobal(rect().bottomLeft()), shown("Kopiert"_text), this);
}

void CopyButton::paintEvent(QPaintEvent*) {
    const Palette colours = paletteOf(palette());
    QPainter painter(this);
    paintButtonGround(painter, *this, colours);
    const double scale = fontMetrics().height() > 2 * copySignSide ? 2 : 1;
    QRectF area(0, 0, copySignSide * scale, copySignSide * scale);
    area.moveCenter(QRectF(rect()).center());
    const DrawingBox box(painter, area, copySignSide,
                         underMouse() ? colours.text : colours.secondary);
    QPainterPath front;
    front.addRoundedRect(QRectF(5, 5, 7, 8), 1.5, 1.5);
    box.stroke(front, 1.2);
    box.stroke(polyline({{9, 2}, {3.4, 2}, {2.4, 3}, {2.4, 10}}), 1.2);
}

}  // namespace fleetwise
