#pragma once

#include "ui/settings/settings_services.h"

namespace fleetwise {

/// What the program is made of, reads and writes, in the interface language. The user's home is
/// "~" in the paths.
ProgramFacts programFacts();

}  // namespace fleetwise
