#include "ui/base/state_sign.h"

#include "ui/base/state_glyph.h"
#include "ui/base/theme.h"

#include <QFontMetrics>
#include <QPainter>

#include <algorithm>

namespace fleetwise {

StateSign::StateSign(SessionState givenState, QWidget* parent)
    : QWidget(parent), state(givenState) {
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

void StateSign::setState(SessionState next) {
    state = next;
    update();
}

QSize StateSign::sizeHint() const {
    // Grows with the text beside it.
    const int side = std::max(Metrics::glyphSide, fontMetrics().ascent());
    return {side, side};
}

void StateSign::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    paintStateGlyph(painter, rect(), state, stateColour(state, appearanceOf(palette())));
}

}  // namespace fleetwise
