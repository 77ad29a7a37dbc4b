#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace fleetwise {

/// Texts for the raw permission mode of a session: "auto", "acceptEdits", "plan" and
/// "bypassPermissions"; any other mode, or none, has no text.
class PermissionMode {
public:
    static std::optional<std::string> label(std::optional<std::string_view> mode);

    /// A sentence for the tooltip.
    static std::optional<std::string> explanation(std::optional<std::string_view> mode);
};

}  // namespace fleetwise
