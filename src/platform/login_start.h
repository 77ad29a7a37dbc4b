#pragma once

#include "reactions/login_start.h"

#include <memory>
#include <string>
#include <string_view>

namespace fleetwise {

/// The variable in the environment of a program that the desktop starts at login: it does not show
/// its window then.
inline constexpr std::string_view startsHiddenVariable = "FLEETWISE_STARTS_HIDDEN";

/// The desktop's own way. On Linux an entry in the folder `autostart` of `configFolder`, usually
/// ~/.config; it is read each time, since desktops have switches for such entries, too. `program`
/// is the full path of what is to be started.
std::unique_ptr<LoginStart> makeLoginStart(const std::string& configFolder, std::string program);

}  // namespace fleetwise
