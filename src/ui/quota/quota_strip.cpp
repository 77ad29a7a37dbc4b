#include "ui/quota/quota_strip.h"

#include "ui/base/interface_text.h"
#include "ui/base/theme.h"

#include <QHelpEvent>
#include <QPainter>
#include <QToolTip>

#include <algorithm>
#include <utility>

namespace fleetwise {

namespace {

constexpr double focusWidth = 1.5;

}  // namespace

QuotaStrip::QuotaStrip(FleetMonitor& givenMonitor, QWidget* parent)
    : QAbstractButton(parent), monitor(givenMonitor) {
    QSizePolicy policy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    policy.setHeightForWidth(true);
    setSizePolicy(policy);
    setFocusPolicy(Qt::NoFocus);
    setCursor(Qt::PointingHandCursor);
    setAccessibleDescription(shown("Öffnet das Fenster »Nutzung«"_text));
    monitor.addObserver(*this);
}

QuotaStrip::~QuotaStrip() {
    monitor.removeObserver(*this);
}

QuotaPlaces QuotaStrip::places(int ofWidth) const {
    return quotaPlaces(figures, QuotaArrangement::sideBySide, ofWidth - 2 * Metrics::margin,
                       QFontMetrics(smallFont(font())));
}

int QuotaStrip::heightForWidth(int width) const {
    const int height = places(width).height;
    return height > 0 ? height + Metrics::grid + Metrics::gap : 0;
}

QSize QuotaStrip::sizeHint() const {
    return {0, heightForWidth(width())};
}

QSize QuotaStrip::minimumSizeHint() const {
    return {0, 0};
}

void QuotaStrip::follow() {
    if (!isVisible()) return;
    if (!monitor.settings().get(Settings::usageShowsQuota)) return setFigures({});
    const UsageOverview& usage = monitor.usage();
    setFigures(quotaFigures(usage, std::max(usage.at, monitor.clock()), monitor.calendar()));
}

void QuotaStrip::setFigures(QuotaFigures newFigures) {
    if (newFigures == figures) return;
    figures = std::move(newFigures);
    setAccessibleName(spokenText(figures));
    setFocusPolicy(figures.blocks.empty() ? Qt::NoFocus : Qt::StrongFocus);
    updateGeometry();
    update();
}

bool QuotaStrip::event(QEvent* event) {
    if (event->type() != QEvent::ToolTip) return QAbstractButton::event(event);
    const auto* help = static_cast<QHelpEvent*>(event);
    const QPoint inside = help->pos() - QPoint(Metrics::margin, Metrics::grid);
    QToolTip::showText(help->globalPos(),
                       plainToolTip(explanationAt(figures, places(width()), inside)), this);
    return true;
}

void QuotaStrip::showEvent(QShowEvent* event) {
    QAbstractButton::showEvent(event);
    follow();
}

void QuotaStrip::paintEvent(QPaintEvent*) {
    if (figures.blocks.empty()) return;
    const Palette colours = paletteOf(palette());
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    if (underMouse() || hasFocus()) {
        painter.setPen(hasFocus() ? QPen(colours.accent, focusWidth) : QPen(Qt::NoPen));
        painter.setBrush(underMouse() ? QBrush(colours.hover) : Qt::NoBrush);
        painter.drawRoundedRect(
            QRectF(rect()).adjusted(Metrics::grid, 1, -Metrics::grid, -Metrics::grid + 1),
            Metrics::rowRadius, Metrics::rowRadius);
    }
    painter.translate(Metrics::margin, Metrics::grid);
    painter.setFont(smallFont(font()));
    paintQuota(painter, figures, places(width()), palette());
}

}  // namespace fleetwise
