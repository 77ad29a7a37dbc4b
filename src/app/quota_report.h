#pragma once

#include "app/diagnostics.h"

#include <string>

namespace fleetwise {

/// The report's lines on Claude's quota windows and on the plans; empty where nothing is known.
std::string quotaReport(const Diagnostics& diagnostics);

/// The report's last section: each of Codex's windows, the plan and the credits.
std::string codexQuotaReport(const Diagnostics& diagnostics);

/// The session's goal, as one line of its block; empty without one.
std::string goalReport(const Diagnostics& diagnostics, const std::string& sessionId);

}  // namespace fleetwise
