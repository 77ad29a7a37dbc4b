#pragma once

#include <QRect>
#include <QSize>

namespace fleetwise {

/// Where a popover of this content opens on a screen, all in the same coordinates: beside its
/// anchor, on the side away from the nearest edge of the screen, and wholly on the screen. It is
/// as wide as its content, and as high up to 70 % of the screen. An anchor without a size is the
/// pointer, since not every tray tells where its items are: the popover then opens in the corner
/// on the right, at the top or at the bottom, whichever the pointer is nearer to.
QRect popoverRect(const QRect& anchor, const QSize& content, const QRect& screen);

}  // namespace fleetwise
