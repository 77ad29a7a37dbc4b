#pragma once

#include <functional>
#include <string>

namespace fleetwise {

/// What can be done with a notification about a session.
enum class NotificationAction {
    focus,   ///< a click on it: the session's window comes to the front
    resume,  ///< the session has ended, and is taken up again
    open,    ///< the session is shown in the program's own window
};

/// What the user is told outside the program's own windows. All texts are plain, and may come from
/// anywhere.
struct Notification {
    std::string identifier;  ///< one of the same identifier takes the place of the one before
    std::string title;
    std::string subtitle;   ///< empty: none
    std::string body;       ///< empty: none
    std::string sessionId;  ///< what it is about; empty: no session, and nothing can be done
    bool hasSound = false;  ///< the desktop's usual one for notifications
    /// What its button does: `resume` or `open`.
    NotificationAction button = NotificationAction::open;

    bool operator==(const Notification&) const = default;
};

/// The desktop's notifications. Main thread only; no call waits for the desktop.
class NotificationCentre {
public:
    using Answer = std::function<void(bool isAuthorized)>;

    NotificationCentre() = default;
    NotificationCentre(const NotificationCentre&) = delete;
    NotificationCentre& operator=(const NotificationCentre&) = delete;
    virtual ~NotificationCentre() = default;

    /// Once. `answered` is called, not before this returns, with whether the user can be told
    /// anything, and again whenever that changes; no longer once this is destroyed.
    virtual void requestAuthorization(Answer answered) = 0;

    /// What cannot be shown is dropped.
    virtual void post(const Notification& notification) = 0;

    /// Takes a notification back, where it still is to be seen. Unknown identifiers are ignored.
    virtual void withdraw(const std::string& identifier) = 0;
};

}  // namespace fleetwise
