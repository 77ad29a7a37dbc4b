#pragma once

#include <string>

namespace fleetwise {

/// A new random UUID (RFC 9562, version 4) in lower case.
std::string randomUuid();

}  // namespace fleetwise
