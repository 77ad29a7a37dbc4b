#include "ui/onboarding/onboarding_drawings.h"

#include "ui/mark/artwork_images.h"
#include "ui/mark/mark_painter.h"

#include <QFontMetrics>
#include <QPainter>

#include <cmath>

namespace fleetwise {

OnboardingDrawing::OnboardingDrawing(QWidget* parent) : QWidget(parent) {
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

QSize OnboardingDrawing::sizeHint() const {
    constexpr int lines = 3;
    const int side = lines * fontMetrics().lineSpacing();
    return {side, side};
}

void ExampleMark::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    paintMark(painter, rect(),
              {.working = 2, .fiveHour = 0.42, .sevenDay = 0.17, .needsAttention = true},
              MarkStyle::coloured, appearanceOf(palette()));
}

void ProgramIcon::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.drawImage(
        rect(), applicationIcon(static_cast<int>(std::lround(width() * devicePixelRatioF()))));
}

}  // namespace fleetwise
