#pragma once

#include <functional>
#include <optional>
#include <string>

namespace fleetwise {

/// The value of an environment variable; nothing where it is not set.
using EnvironmentLookup = std::function<std::optional<std::string>(const std::string& name)>;

}  // namespace fleetwise
