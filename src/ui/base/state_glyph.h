#pragma once

#include "session/session_state.h"

#include <QColor>
#include <QPainter>
#include <QRectF>

namespace fleetwise {

/// Draws the state's sign in the middle of `area`, as large as fits. Each state has a shape of its
/// own, so that none needs its colour to be told from the others. `turn`, 0 to 1, is how far the
/// ring of a working session has turned; the other signs stand still.
void paintStateGlyph(QPainter& painter, const QRectF& area, SessionState state,
                     const QColor& colour, double turn = 0);

}  // namespace fleetwise
