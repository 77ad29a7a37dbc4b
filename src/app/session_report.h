#pragma once

#include "app/diagnostics.h"
#include "fleet/session.h"

#include <string>

namespace fleetwise {

/// One session's block of the diagnostic report: a heading, then indented lines for what is
/// known of it.
std::string sessionReport(const Session& session, const Diagnostics& diagnostics);

}  // namespace fleetwise
