#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace fleetwise {

/// Texts for the error codes that agents report for a failed turn.
class SessionError {
public:
    /// In the interface language; a code that is not known has no text.
    static std::optional<std::string> label(std::string_view code);
};

}  // namespace fleetwise
