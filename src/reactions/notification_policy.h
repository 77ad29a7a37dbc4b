#pragma once

#include "fleet/session.h"

#include <array>
#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace fleetwise {

/// Whether a session may notify at all, by the user's choices for sessions and projects. Pure
/// functions.
class NotificationPolicy {
public:
    /// What a choice of the user's is made for.
    enum class Anchor { session, project };

    static constexpr std::array allAnchors{Anchor::session, Anchor::project};

    /// Key to whether it notifies; see `key`.
    using Overrides = std::map<std::string, bool>;

    /// "session" or "project".
    static std::string_view rawValue(Anchor anchor);

    /// "s:" and the session's id, or "p:" and the project: the session's working directory without
    /// slashes at its end. Nothing for the project of a session that has none.
    static std::optional<std::string> key(Anchor anchor, const std::string& sessionId,
                                          const std::optional<std::string>& project);

    /// What is stored for the anchor, else `defaultForNew`.
    static bool allows(Anchor anchor, const std::string& sessionId,
                       const std::optional<std::string>& project, const Overrides& overrides,
                       bool defaultForNew);

    /// What holds for the session in the end: the choice for itself, else that for its project,
    /// else `defaultForNew`.
    static bool notifies(const Session& session, const Overrides& overrides, bool defaultForNew);
};

}  // namespace fleetwise
