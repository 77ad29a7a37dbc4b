#pragma once

#include <QFont>
#include <QString>
#include <QTextLayout>

#include <memory>

namespace fleetwise {

/// A text broken into lines of a width: at words, and within those that are too long for a line.
class WrappedText {
public:
    WrappedText(const QString& text, const QFont& font, int width);

    int lineCount() const { return layout->lineCount(); }
    /// Of the first `most` lines, of all where that is 0.
    int height(int most) const;
    /// The width of the longest line.
    int naturalWidth() const;

    /// Draws the first `most` lines (0: all) with the pen's colour. Where there are more, the last
    /// of them ends with "…".
    void draw(QPainter& painter, const QPoint& place, int most) const;

private:
    int shownLines(int most) const;

    QString text;
    int width;
    std::unique_ptr<QTextLayout> layout;
};

}  // namespace fleetwise
