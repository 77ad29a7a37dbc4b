#include "reactions/notification_policy.h"

namespace fleetwise {

std::string_view NotificationPolicy::rawValue(Anchor anchor) {
    return anchor == Anchor::session ? "session" : "project";
}

std::optional<std::string> NotificationPolicy::key(Anchor anchor, const std::string& sessionId,
                                                   const std::optional<std::string>& project) {
    if (anchor == Anchor::session) return "s:" + sessionId;
    if (!project || project->empty()) return {};
    return "p:" + project->substr(0, project->find_last_not_of('/') + 1);
}

bool NotificationPolicy::allows(Anchor anchor, const std::string& sessionId,
                                const std::optional<std::string>& project,
                                const Overrides& overrides, bool defaultForNew) {
    const auto anchorKey = key(anchor, sessionId, project);
    const auto choice = anchorKey ? overrides.find(*anchorKey) : overrides.end();
    return choice == overrides.end() ? defaultForNew : choice->second;
}

bool NotificationPolicy::notifies(const Session& session, const Overrides& overrides,
                                  bool defaultForNew) {
    const bool byProject =
        allows(Anchor::project, session.id, session.cwd, overrides, defaultForNew);
    return allows(Anchor::session, session.id, session.cwd, overrides, byProject);
}

}  // namespace fleetwise
