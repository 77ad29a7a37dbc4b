#pragma once

#include "ui/fleet/row_geometry.h"

#include <QPainter>

#include <optional>

namespace fleetwise {

struct Palette;

/// Draws the buttons of a row. `isLive` decides between focusing and resuming; `pointed` is the one
/// under the pointer.
void paintRowActions(QPainter& painter, const RowActions& places, bool isLive,
                     std::optional<RowAction> pointed, const Palette& palette);

}  // namespace fleetwise
