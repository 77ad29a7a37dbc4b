#include "ui/onboarding/step_dots.h"

#include "ui/base/interface_text.h"
#include "ui/base/theme.h"

#include <QPainter>
#include <QStyle>

namespace fleetwise {

namespace {

constexpr int dotSide = Metrics::gap;
constexpr int longDot = 3 * dotSide;

}  // namespace

StepDots::StepDots(int givenCount, QWidget* parent) : QWidget(parent), count(givenCount) {
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    setStep(0);
}

void StepDots::setStep(int step) {
    current = step;
    const QString text = shown("Seite %d von %d"_text, current + 1, count);
    setAccessibleName(text);
    setToolTip(text);
    update();
}

QSize StepDots::sizeHint() const {
    return {(count - 1) * (dotSide + Metrics::gap) + longDot, dotSide};
}

void StepDots::paintEvent(QPaintEvent* /*event*/) {
    const Palette colours = paletteOf(palette());
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    int left = 0;
    for (int step = 0; step < count; ++step) {
        const int width = step == current ? longDot : dotSide;
        painter.setBrush(step == current ? colours.accent : colours.secondary);
        const QRect dot = QStyle::visualRect(layoutDirection(), rect(), {left, 0, width, dotSide});
        painter.drawRoundedRect(dot, dotSide / 2.0, dotSide / 2.0);
        left += width + Metrics::gap;
    }
}

}  // namespace fleetwise
