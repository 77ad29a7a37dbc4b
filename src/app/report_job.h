#pragma once

#include "app/language_choice.h"
#include "foundation/user_defaults.h"

#include <string>

namespace fleetwise {

/// Collects the fleet once cold and once warm, as the application does, and returns the
/// diagnostic report.
std::string runReport(UserDefaults& defaults, const LanguageChoice& language);

}  // namespace fleetwise
