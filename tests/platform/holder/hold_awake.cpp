// Keeps the machine awake by the two buses given as its arguments, until it is killed.

#include "platform/power_assertions.h"
#include "reactions/stay_awake.h"

#include <QCoreApplication>

int main(int argumentCount, char** arguments) {
    using namespace fleetwise;
    if (argumentCount != 3) return 2;
    const QCoreApplication application(argumentCount, arguments);
    SystemPowerAssertions assertions(QDBusConnection::connectToBus(arguments[1], "system"),
                                     QDBusConnection::connectToBus(arguments[2], "session"));
    StayAwake awake(assertions);
    awake.set(true, currentDate());
    return QCoreApplication::exec();
}
