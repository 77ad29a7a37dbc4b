#pragma once

#include "reactions/state_action.h"

#include <QString>
#include <QStringList>

namespace fleetwise {

/// The program and each of its arguments, a line each, in the interface language.
QStringList planLines(const StateAction::Plan& plan);

/// The variables that the program gets, a line each; for the session's id stands what it is.
QStringList environmentLines(SessionState state);

}  // namespace fleetwise
