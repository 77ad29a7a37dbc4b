#pragma once

#include "session/session_state.h"

#include <QIcon>

class QWidget;

namespace fleetwise {

/// The state's glyph for a control of `owner`, in the colours and at the scale that this has.
QIcon stateIcon(SessionState state, const QWidget& owner);

}  // namespace fleetwise
