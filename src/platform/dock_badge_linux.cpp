// The signal com.canonical.Unity.LauncherEntry.Update, which most docks and task bars listen to:
// the entry's address and a dictionary with "count" and "count-visible".

#include "platform/dock_badge.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QVariantMap>

namespace fleetwise {

void showDockBadge(std::size_t count) {
    const QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected()) return;
    QDBusMessage update = QDBusMessage::createSignal(
        QStringLiteral("/com/fleetwise/LauncherEntry"),
        QStringLiteral("com.canonical.Unity.LauncherEntry"), QStringLiteral("Update"));
    update << QStringLiteral("application://fleetwise.desktop")
           << QVariantMap{{QStringLiteral("count"), static_cast<qlonglong>(count)},
                          {QStringLiteral("count-visible"), count > 0}};
    bus.send(update);
}

}  // namespace fleetwise
