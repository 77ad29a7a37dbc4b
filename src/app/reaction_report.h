#pragma once

#include "app/diagnostics.h"

#include <string>

namespace fleetwise {

/// The report's lines on what follows when a session changes its state. Of the webhook's address
/// only the host is told, of a command only the program: the rest may be a secret.
std::string reactionReport(const Diagnostics& diagnostics);

}  // namespace fleetwise
