#pragma once

#include "sources/hook_installer.h"

#include <QString>

namespace fleetwise {

/// What installing the hook writes and where, for the user to agree to.
QString hookExplanation(const HookInstaller::Places& places);

}  // namespace fleetwise
