#pragma once

#include "reactions/notification_centre.h"

#include <QStringList>
#include <QVariantList>

namespace fleetwise {

/// The arguments of Notify for a service of these capabilities; `replaced` is the id of the
/// notification whose place it takes, 0 for none. Texts are cut to a sensible length, and nothing
/// in them is markup.
QVariantList notifyArguments(const Notification& notification, const QStringList& capabilities,
                             uint replaced);

/// The key that the notification's button has with the service.
QString buttonKey(NotificationAction button);

/// The key of a click on the notification itself (freedesktop.org, Desktop Notifications 1.2,
/// "Notify").
inline constexpr const char* clickKey = "default";

}  // namespace fleetwise
