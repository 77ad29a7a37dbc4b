#pragma once

#include <string>

namespace fleetwise {

/// What the user is told outside the program's own windows. All texts are plain.
struct Notification {
    std::string identifier;  ///< one of the same identifier takes the place of the one before
    std::string title;
    std::string subtitle;   ///< empty: none
    std::string body;       ///< empty: none
    std::string sessionId;  ///< what it is about; empty: no session

    bool operator==(const Notification&) const = default;
};

/// The desktop's notifications.
class NotificationCentre {
public:
    NotificationCentre() = default;
    NotificationCentre(const NotificationCentre&) = delete;
    NotificationCentre& operator=(const NotificationCentre&) = delete;
    virtual ~NotificationCentre() = default;

    virtual void post(const Notification& notification) = 0;
};

}  // namespace fleetwise
