#include "ui/mark/artwork_images.h"

#include "foundation/brand.h"
#include "ui/base/drawing_box.h"
#include "ui/base/interface_text.h"
#include "ui/base/state_glyph.h"
#include "ui/base/theme.h"
#include "ui/mark/mark_painter.h"

#include <QGuiApplication>
#include <QLinearGradient>

#include <array>

namespace fleetwise {

namespace {

constexpr QSize socialSize(1200, 630);

/// The figures that the mark shows where it stands for the program.
MarkFigures sampleFigures() {
    return {.working = 3, .fiveHour = 0.7, .sevenDay = 0.4, .needsAttention = true};
}

MarkFigures tinyFigures() {
    return {.working = 3, .fiveHour = 0.7};
}

Palette tokens(Appearance appearance) {
    return paletteOf(appearance, QGuiApplication::palette());
}

QFont font(int pixels, QFont::Weight weight = QFont::Normal) {
    QFont font = QGuiApplication::font();
    font.setPixelSize(pixels);
    font.setWeight(weight);
    return font;
}

QImage canvas(const QSize& size, const QColor& ground) {
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    image.fill(ground);
    return image;
}

/// Few pixels go to the ring and the count alone.
void paintIcon(QPainter& painter, const QRectF& area) {
    const bool isTiny = area.width() < 24;
    QLinearGradient ground(area.topLeft(), area.bottomLeft());
    ground.setColorAt(0, QColor(0x33, 0x38, 0x46));
    ground.setColorAt(1, QColor(0x17, 0x19, 0x20));
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(ground);
    const double radius = area.width() * 0.225;
    painter.drawRoundedRect(area, radius, radius);
    const double margin = isTiny ? 0.5 : area.width() * 0.13;
    paintMark(painter, area.adjusted(margin, margin, -margin, -margin),
              isTiny ? tinyFigures() : sampleFigures(), MarkStyle::coloured, Appearance::dark);
}

struct SampleRow {
    SessionState state;
    Text name;
};

constexpr std::array<SampleRow, 5> sampleRows{{
    {SessionState::decision, "Rechnungen umbenennen"_text},
    {SessionState::working, "Tests für den Import"_text},
    {SessionState::waitingForSubagents, "Parser aufräumen"_text},
    {SessionState::done, "Dokumentation ergänzen"_text},
    {SessionState::idle, "Startseite entwerfen"_text},
}};

void paintSampleRow(QPainter& painter, const QRectF& area, const SampleRow& row) {
    const Palette colours = tokens(Appearance::dark);
    const QColor colour = stateColour(row.state, Appearance::dark);
    paintStateGlyph(painter, QRectF(area.left() + 28, area.center().y() - 17, 34, 34), row.state,
                    colour);
    const QRectF words = area.adjusted(90, 0, -24, 0);
    painter.setPen(colours.text);
    painter.setFont(font(26, demandsAttention(row.state) ? QFont::DemiBold : QFont::Normal));
    painter.drawText(words.adjusted(0, 12, 0, 0), Qt::AlignLeft | Qt::AlignTop,
                     painter.fontMetrics().elidedText(shown(row.name), Qt::ElideRight,
                                                      static_cast<int>(words.width())));
    painter.setPen(colours.secondary);
    painter.setFont(font(20));
    painter.drawText(words.adjusted(0, 0, 0, -12), Qt::AlignLeft | Qt::AlignBottom,
                     qtText(label(row.state)));
}

void paintSampleList(QPainter& painter, const QRectF& area) {
    const Palette colours = tokens(Appearance::dark);
    painter.setPen(colours.hairline);
    painter.setBrush(colours.ground);
    painter.drawRoundedRect(area, 20, 20);
    const double height = (area.height() - 24) / static_cast<double>(sampleRows.size());
    QRectF place(area.left(), area.top() + 12, area.width(), height);
    for (const auto& row : sampleRows) {
        paintSampleRow(painter, place, row);
        place.translate(0, height);
    }
}

void paintArrow(QPainter& painter, const DiskImageLayout& layout, const QColor& colour) {
    const QPointF middle = QPointF(layout.application + layout.applications) / 2;
    const DrawingBox box(painter, QRectF(middle - QPointF(50, 50), QSizeF(100, 100)), 100, colour);
    box.stroke(polyline({{14, 50}, {82, 50}}), 7);
    box.stroke(polyline({{60, 28}, {82, 50}, {60, 72}}), 7);
}

}  // namespace

QImage applicationIcon(int side) {
    QImage image = canvas(QSize(side, side), Qt::transparent);
    QPainter painter(&image);
    // Small icons need every pixel; large ones stand with some air around them.
    const double margin = side < 64 ? 0 : side / 16.0;
    paintIcon(painter, QRectF(image.rect()).adjusted(margin, margin, -margin, -margin));
    return image;
}

QImage socialImage() {
    const Palette colours = tokens(Appearance::dark);
    QImage image = canvas(socialSize, colours.window);
    QPainter painter(&image);
    paintIcon(painter, QRectF(72, 120, 176, 176));
    painter.setPen(colours.text);
    painter.setFont(font(72, QFont::DemiBold));
    painter.drawText(QRectF(72, 324, 520, 90), Qt::AlignLeft | Qt::AlignVCenter,
                     QString::fromUtf8(Brand::bundleName));
    painter.setPen(colours.secondary);
    painter.setFont(font(32));
    painter.drawText(QRectF(72, 420, 520, 100), Qt::AlignLeft | Qt::AlignTop | Qt::TextWordWrap,
                     shown("Sieh auf einen Blick, welcher Agent dich braucht."_text));
    paintSampleList(painter, QRectF(632, 80, 496, 470));
    return image;
}

QImage diskImageBackground() {
    const DiskImageLayout layout;
    const Palette colours = tokens(Appearance::light);
    QImage image = canvas(layout.window, colours.window);
    QPainter painter(&image);
    paintArrow(painter, layout, stateColour(SessionState::working, Appearance::light));
    painter.setPen(colours.text);
    painter.setFont(font(15));
    painter.drawText(QRectF(0, 310, layout.window.width(), 40), Qt::AlignCenter,
                     shown("Zieh Fleetwise in den Programme-Ordner."_text));
    return image;
}

}  // namespace fleetwise
