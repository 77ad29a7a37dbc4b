#pragma once

#include "reactions/notification_centre.h"

#include <functional>
#include <utility>

namespace fleetwise {

/// The desktop's notifications or, while no service of the desktop answers, what the program's own
/// interface can show: so the user can always be told. Main thread only.
class NotificationsWithFallback final : public NotificationCentre {
public:
    using Show = std::function<void(const Notification&)>;

    /// `givenDesktop` outlives this.
    explicit NotificationsWithFallback(NotificationCentre& givenDesktop) : desktop(givenDesktop) {}

    /// Before, nothing can be shown without the desktop.
    void setFallback(Show newShow) { show = std::move(newShow); }

    void requestAuthorization(Answer answered) override {
        desktop.requestAuthorization([this, answered = std::move(answered)](bool isThere) {
            hasDesktop = isThere;
            answered(true);
        });
    }

    void post(const Notification& notification) override {
        if (hasDesktop) {
            desktop.post(notification);
        } else {
            showHere(notification);
        }
    }

    /// For what the desktop refused.
    void showHere(const Notification& notification) {
        if (show) show(notification);
    }

    void withdraw(const std::string& identifier) override { desktop.withdraw(identifier); }

private:
    NotificationCentre& desktop;
    Show show;
    bool hasDesktop = false;
};

}  // namespace fleetwise
