#pragma once

#include "platform/peer_program.h"
#include "support/temporary_directory.h"

#include <QDBusConnection>

#include <string>
#include <vector>

namespace fleetwise::testing {

/// A message bus of the test's own, on which nothing is started but what the test offers. Needs a
/// QCoreApplication; ask `isPossible` first.
class PrivateBus {
public:
    static bool isPossible() { return isInstalled("dbus-daemon"); }

    PrivateBus();
    PrivateBus(const PrivateBus&) = delete;
    PrivateBus& operator=(const PrivateBus&) = delete;
    ~PrivateBus();

    /// As in DBUS_SESSION_BUS_ADDRESS.
    const std::string& address() const { return busAddress; }

    /// A new connection, closed together with this. Connections are programs of their own to each
    /// other; the name only tells them apart and is given once.
    QDBusConnection connect(const std::string& name);

    /// Has the bus start this program when somebody calls the service.
    void offer(const std::string& service, const std::string& program);

private:
    TemporaryDirectory directory;
    PeerProgram daemon;
    std::string busAddress;
    std::vector<QString> connections;
};

}  // namespace fleetwise::testing
