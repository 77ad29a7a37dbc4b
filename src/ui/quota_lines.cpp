#include "ui/quota_lines.h"

#include "ui/interface_text.h"
#include "ui/theme.h"

#include <QFontMetrics>
#include <QPainter>

#include <algorithm>
#include <cmath>
#include <vector>

namespace fleetwise {

namespace {

constexpr double nearlyUsedUp = 0.8;
constexpr float tailOpacity = 0.35F;
constexpr int barHeight = 4;

struct Line {
    Text name;
    const QuotaFigures::Window& window;
};

std::vector<Line> linesOf(const QuotaFigures& figures) {
    std::vector<Line> lines;
    if (figures.fiveHour) lines.push_back({"5 h"_text, *figures.fiveHour});
    if (figures.sevenDay) lines.push_back({"7 d"_text, *figures.sevenDay});
    return lines;
}

QString usedText(const Line& line) {
    const long percent = std::lround(std::clamp(line.window.used, 0.0, 9.99) * 100);
    return shown(line.name) + ' ' + shown("%d %%"_text, percent);
}

QString restText(const Line& line, const QString& age) {
    if (age.isEmpty() || line.window.reset.isEmpty()) return line.window.reset + age;
    return line.window.reset + " · " + age;
}

class BarPainter {
public:
    BarPainter(QPainter& givenPainter, const QRectF& givenBar)
        : painter(givenPainter), bar(givenBar) {}

    void fill(double share, const QColor& colour) const {
        if (!(share > 0)) return;
        QRectF part = bar;
        part.setWidth(std::max(bar.height(), bar.width() * std::min(share, 1.0)));
        painter.setPen(Qt::NoPen);
        painter.setBrush(colour);
        painter.drawRoundedRect(part, bar.height() / 2, bar.height() / 2);
    }

private:
    QPainter& painter;
    QRectF bar;
};

}  // namespace

QuotaLines::QuotaLines(QWidget* parent) : QWidget(parent) {
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    setVisible(false);
}

void QuotaLines::setFigures(const QuotaFigures& newFigures) {
    if (newFigures == figures) return;
    figures = newFigures;
    setVisible(!linesOf(figures).empty());
    updateGeometry();
    update();
}

QSize QuotaLines::sizeHint() const {
    const auto count = static_cast<int>(linesOf(figures).size());
    return {0, count * lineHeight() + std::max(0, count - 1) * Metrics::gap};
}

int QuotaLines::lineHeight() const {
    return QFontMetrics(smallFont(font())).height() + Metrics::grid + barHeight;
}

void QuotaLines::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setFont(smallFont(font()));
    const Palette colours = paletteOf(palette());
    const bool isStale = !figures.age.isEmpty();
    QRect place(0, 0, width(), lineHeight());
    for (const auto& line : linesOf(figures)) {
        painter.setPen(isStale ? colours.secondary : colours.text);
        painter.drawText(place, Qt::AlignLeft | Qt::AlignTop, usedText(line));
        painter.setPen(colours.secondary);
        painter.drawText(place, Qt::AlignRight | Qt::AlignTop, restText(line, figures.age));
        const auto usual = line.window.used >= nearlyUsedUp ? colours.warning : colours.accent;
        const QColor colour = isStale ? colours.secondary : usual;
        QColor tail = colour;
        tail.setAlphaF(tailOpacity);
        const BarPainter bar(painter, place.adjusted(0, place.height() - barHeight, 0, 0));
        bar.fill(1, colours.hairline);
        bar.fill(line.window.projected.value_or(0), tail);
        bar.fill(line.window.used, colour);
        place.translate(0, place.height() + Metrics::gap);
    }
}

}  // namespace fleetwise
