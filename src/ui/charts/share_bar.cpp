#include "ui/charts/share_bar.h"

#include "ui/base/theme.h"

#include <QPainter>

#include <algorithm>

namespace fleetwise {

namespace {

constexpr int shareBarHeight = 6;
constexpr double nearlyUsedUp = 0.8;

}  // namespace

ShareBar::ShareBar(QWidget* parent) : QWidget(parent) {
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

void ShareBar::setShare(double newShare, bool newIsFaint) {
    share = std::clamp(newShare, 0.0, 1.0);
    isFaint = newIsFaint;
    update();
}

QSize ShareBar::sizeHint() const {
    return {0, shareBarHeight + Metrics::grid};
}

void ShareBar::paintEvent(QPaintEvent*) {
    const Palette colours = paletteOf(palette());
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    constexpr double radius = shareBarHeight / 2.0;
    QRectF bar(0, 0, width(), shareBarHeight);
    painter.setBrush(colours.hairline);
    painter.drawRoundedRect(bar, radius, radius);
    if (!(share > 0)) return;
    const QColor usual = share >= nearlyUsedUp ? colours.warning : colours.accent;
    bar.setWidth(std::max<double>(shareBarHeight, bar.width() * share));
    painter.setBrush(isFaint ? colours.secondary : usual);
    painter.drawRoundedRect(bar, radius, radius);
}

}  // namespace fleetwise
