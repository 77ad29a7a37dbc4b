#include "platform/private_bus.h"

#include <QDBusError>
#include <QDBusMessage>
#include <gtest/gtest.h>

namespace fleetwise::testing {

namespace {

/// As usual for a session, but without the services that are installed.
std::string configurationFile(const TemporaryDirectory& directory) {
    return directory.write(
        "bus.conf",
        "<busconfig><type>session</type><listen>unix:path=" + directory.at("bus") +
            "</listen><servicedir>" + directory.makeDirectory("services") +
            "</servicedir><auth>EXTERNAL</auth><policy context='default'>"
            "<allow send_destination='*' eavesdrop='true'/><allow eavesdrop='true'/>"
            "<allow own='*'/></policy><limit name='max_replies_per_connection'>50000</limit>"
            "</busconfig>");
}

}  // namespace

PrivateBus::PrivateBus()
    : daemon("dbus-daemon",
             {"--config-file=" + configurationFile(directory), "--nofork", "--print-address"},
             {{"HOME", directory.path()}}),
      busAddress(daemon.nextLine()) {}

PrivateBus::~PrivateBus() {
    for (const QString& name : connections)
        QDBusConnection::disconnectFromBus(name);
}

void PrivateBus::offer(const std::string& service, const std::string& program) {
    directory.write("services/" + service + ".service",
                    "[D-BUS Service]\nName=" + service + "\nExec=" + program + "\n");
    auto message = QDBusMessage::createMethodCall("org.freedesktop.DBus", "/org/freedesktop/DBus",
                                                  "org.freedesktop.DBus", "ReloadConfig");
    EXPECT_EQ(connect("offer").call(message).type(), QDBusMessage::ReplyMessage);
}

QDBusConnection PrivateBus::connect(const std::string& name) {
    connections.push_back(QString::fromStdString(directory.path() + "/" + name));
    const auto connection =
        QDBusConnection::connectToBus(QString::fromStdString(busAddress), connections.back());
    EXPECT_TRUE(connection.isConnected()) << connection.lastError().message().toStdString();
    return connection;
}

}  // namespace fleetwise::testing
