#pragma once

#include "reactions/notification_centre.h"

#include <functional>
#include <memory>
#include <string>

class QDBusConnection;

namespace fleetwise {

/// The notifications of the desktop: the service org.freedesktop.Notifications, version 1.2 of what
/// freedesktop.org describes. The user can be told while that runs; asking starts it where that is
/// possible. Needs Qt's event loop.
class DesktopNotifications final : public NotificationCentre {
public:
    /// Told what the user chose on a notification about a session.
    using Activated = std::function<void(const std::string& sessionId, NotificationAction action)>;

    /// Told of what the desktop did not take.
    using Refused = std::function<void(const Notification&)>;

    /// Of so many of the newest notifications it is known that they can still be seen.
    static constexpr std::size_t maximumKnown = 500;

    /// `bus` is the session's; it may be without a connection. What is known to be
    /// seen is closed at the end, since nobody would hear of a click.
    DesktopNotifications(const QDBusConnection& bus, Activated activated, Refused refused);
    ~DesktopNotifications() override;

    void requestAuthorization(Answer answered) override;
    void post(const Notification& notification) override;
    void withdraw(const std::string& identifier) override;

private:
    class Service;
    std::unique_ptr<Service> service;
};

}  // namespace fleetwise
