#include "ui/tray/popover_geometry.h"

#include "ui/base/theme.h"

#include <algorithm>

namespace fleetwise {

namespace {

constexpr double largestShareOfHeight = 0.7;

QSize fittedSize(const QSize& content, const QRect& screen) {
    const int height = static_cast<int>(screen.height() * largestShareOfHeight);
    return content.boundedTo({screen.width(), height});
}

QRect inCorner(const QPoint& pointer, const QSize& size, const QRect& screen) {
    QRect rect(QPoint(), size);
    rect.moveRight(screen.right() - Metrics::gap);
    if (pointer.y() < screen.center().y()) {
        rect.moveTop(screen.top() + Metrics::gap);
    } else {
        rect.moveBottom(screen.bottom() - Metrics::gap);
    }
    return rect;
}

QRect besideAnchor(const QRect& anchor, const QSize& size, const QRect& screen) {
    const int toTop = anchor.top() - screen.top();
    const int toBottom = screen.bottom() - anchor.bottom();
    const int toLeft = anchor.left() - screen.left();
    const int toRight = screen.right() - anchor.right();
    // A panel across the screen is more common than one along its side, so it wins a corner.
    const int nearest = std::min({toTop, toBottom, toLeft, toRight});
    QRect rect(QPoint(), size);
    rect.moveCenter(anchor.center());
    if (nearest == toTop) {
        rect.moveTop(anchor.bottom() + 1 + Metrics::grid);
    } else if (nearest == toBottom) {
        rect.moveBottom(anchor.top() - 1 - Metrics::grid);
    } else if (nearest == toLeft) {
        rect.moveLeft(anchor.right() + 1 + Metrics::grid);
    } else {
        rect.moveRight(anchor.left() - 1 - Metrics::grid);
    }
    return rect;
}

/// Moves it onto the screen, with its beginning visible where it is too large.
QRect movedInto(QRect rect, const QRect& screen) {
    rect.moveRight(std::min(rect.right(), screen.right()));
    rect.moveBottom(std::min(rect.bottom(), screen.bottom()));
    rect.moveLeft(std::max(rect.left(), screen.left()));
    rect.moveTop(std::max(rect.top(), screen.top()));
    return rect;
}

}  // namespace

QRect popoverRect(const QRect& anchor, const QSize& content, const QRect& screen) {
    const QSize size = fittedSize(content, screen);
    const QRect rect = anchor.isEmpty() ? inCorner(anchor.topLeft(), size, screen)
                                        : besideAnchor(anchor, size, screen);
    return movedInto(rect, screen);
}

}  // namespace fleetwise
