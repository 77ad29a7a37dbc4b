#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace fleetwise {

/// Where a session was started.
enum class SessionOrigin { cli, desktop, unknown };

/// "cli", "desktop" or "unknown".
std::string_view rawValue(SessionOrigin origin);

/// In the interface language.
std::string label(SessionOrigin origin);

/// From the registry's `entrypoint`, such as "cli", "sdk-cli" or "claude-desktop".
SessionOrigin sessionOriginFrom(std::optional<std::string_view> entrypoint);

}  // namespace fleetwise
