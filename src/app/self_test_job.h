#pragma once

#include "app/language_choice.h"
#include "app/self_test.h"

namespace fleetwise {

/// Checks this program on this machine, for this user.
SelfTest runSelfTest(const LanguageChoice& language);

}  // namespace fleetwise
