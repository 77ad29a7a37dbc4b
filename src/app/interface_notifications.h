#pragma once

#include "reactions/notification_centre.h"

#include <functional>
#include <utility>

namespace fleetwise {

/// Notifications that the program's own interface shows. Main thread only.
class InterfaceNotifications final : public NotificationCentre {
public:
    using Show = std::function<void(const Notification&)>;

    /// What is posted before is not shown.
    void setShow(Show newShow) { show = std::move(newShow); }

    void post(const Notification& notification) override {
        if (show) show(notification);
    }

private:
    Show show;
};

}  // namespace fleetwise
