#include "ui/details/text_measure.h"

#include <QFontMetrics>
#include <QPainter>

#include <algorithm>
#include <cmath>

namespace fleetwise {

WrappedText::WrappedText(const QString& givenText, const QFont& font, int givenWidth)
    : text(givenText), width(std::max(1, givenWidth)) {
    text.replace(u'\n', QChar::LineSeparator);
    layout = std::make_unique<QTextLayout>(text, font);
    QTextOption option;
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    layout->setTextOption(option);
    layout->beginLayout();
    double bottom = 0;
    for (QTextLine line = layout->createLine(); line.isValid(); line = layout->createLine()) {
        line.setLeadingIncluded(true);
        line.setLineWidth(width);
        line.setPosition({0, bottom});
        bottom += line.height();
    }
    layout->endLayout();
}

int WrappedText::shownLines(int most) const {
    return most > 0 ? std::min(most, lineCount()) : lineCount();
}

int WrappedText::height(int most) const {
    const int lines = shownLines(most);
    if (lines == 0) return 0;
    const QTextLine last = layout->lineAt(lines - 1);
    return static_cast<int>(std::ceil(last.y() + last.height()));
}

int WrappedText::naturalWidth() const {
    double longest = 0;
    for (int number = 0; number < lineCount(); ++number)
        longest = std::max(longest, layout->lineAt(number).naturalTextWidth());
    return static_cast<int>(std::ceil(longest));
}

void WrappedText::draw(QPainter& painter, const QPoint& place, int most) const {
    const int lines = shownLines(most);
    const bool isCut = lines < lineCount();
    for (int number = 0; number < (isCut ? lines - 1 : lines); ++number)
        layout->lineAt(number).draw(&painter, place);
    if (!isCut) return;
    const QTextLine last = layout->lineAt(lines - 1);
    const QFontMetrics metrics(layout->font());
    QString rest = text.mid(last.textStart(), 2 * last.textLength() + 2);
    rest.replace(QChar::LineSeparator, u' ');
    // What follows may be short enough to fit but for the sign that more is there.
    const QString shown = metrics.elidedText(rest + QStringLiteral(" …"), Qt::ElideRight, width);
    painter.setFont(layout->font());
    painter.drawText(QPointF(place) + QPointF(0, last.y() + last.ascent()), shown);
}

}  // namespace fleetwise
