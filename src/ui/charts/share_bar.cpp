#include "ui/charts/share_bar.h"

#include "ui/base/bar_painting.h"
#include "ui/base/theme.h"

#include <QPainter>

#include <algorithm>

namespace fleetwise {

namespace {

constexpr int shareBarHeight = 6;

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
    const QRectF bar(0, 0, width(), shareBarHeight);
    const QColor usual = share >= warningShare ? colours.warning : colours.accent;
    fillBar(painter, bar, 1, colours.hairline);
    fillBar(painter, bar, share, isFaint ? colours.secondary : usual);
}

}  // namespace fleetwise
