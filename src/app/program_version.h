#pragma once

#include <string>

namespace fleetwise {

/// Of this program, such as "0.1.0".
std::string programVersion();

}  // namespace fleetwise
