#pragma once

#include "ui/base/theme.h"

#include <QWidget>

#include <cstddef>
#include <optional>

namespace fleetwise {

/// What all charts have in common: a marker that follows the pointer and the arrow keys, a frame
/// while it has the focus, and the words for those who cannot see it.
class ChartWidget : public QWidget {
    Q_OBJECT

public:
    explicit ChartWidget(const QString& title, QWidget* parent = nullptr);

    /// The item that the marker stands at.
    std::optional<std::size_t> marked() const { return marker; }

    /// Nothing takes the marker away.
    void mark(std::optional<std::size_t> item);

signals:
    /// What the marker stands at, in one line with its figures; empty where it is nowhere.
    void markChanged(const QString& text);

protected:
    enum class Step { one, page };

    /// Items are counted from the oldest or topmost.
    virtual std::size_t itemCount() const = 0;
    /// The one that the pointer means at this place.
    virtual std::optional<std::size_t> itemAt(const QPointF& place) const = 0;
    virtual QString itemText(std::size_t item) const = 0;
    virtual void paintChart(QPainter& painter, const Palette& colours) = 0;
    /// Where a step of the keys leads to from an item; `direction` is 1 or -1.
    virtual std::size_t stepFrom(std::size_t item, int direction, Step step) const;

    /// Call when the items differ: the marker stays at its index while that exists.
    void itemsChanged();

    QFont labelFont() const { return smallFont(font()); }
    int labelHeight() const { return QFontMetrics(labelFont()).height(); }

    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;

private:
    std::optional<std::size_t> itemByKey(int key) const;
    void tellMark();

    QString subject;
    QString toldText;
    std::optional<std::size_t> marker;
};

/// The colour of the `index`-th of several things in one chart, 0 … 4. `isRest` is the last of
/// them where it stands for all others. Each reaches 3:1 on ground and window.
QColor seriesColour(std::size_t index, bool isRest, Appearance appearance);

inline constexpr std::size_t mostSeries = 5;

}  // namespace fleetwise
