#pragma once

#include "sources/hook_installer.h"

#include <tl/expected.hpp>

#include <string>

namespace fleetwise {

/// Where the hook, its entries and what it writes are for this user.
HookInstaller::Places hookPlacesOfThisUser();

/// Installs the hook program of this program and its entries for this user. Returns what to tell
/// the user, or what went wrong, in the interface language.
tl::expected<std::string, std::string> installHooks();

/// Takes the entries out again; as installHooks.
tl::expected<std::string, std::string> uninstallHooks();

}  // namespace fleetwise
