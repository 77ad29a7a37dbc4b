#pragma once

#include <QDBusConnection>
#include <QObject>

namespace fleetwise {

/// One signal of the objects at a path, whoever sends it: the message tells.
class BusSignal final : public QObject {
    Q_OBJECT

public:
    BusSignal(QDBusConnection bus, const QString& path, const QString& interface,
              const QString& name) {
        bus.connect({}, path, interface, name, this, SIGNAL(received(QDBusMessage)));
    }

Q_SIGNALS:
    void received(const QDBusMessage& message);
};

}  // namespace fleetwise
