// Keeps the machine awake by the two buses given as its arguments, until it is killed. Prints a
// line once it does.

#include "platform/power_assertions.h"
#include "reactions/stay_awake.h"

#include <QCoreApplication>
#include <QTimer>

#include <chrono>
#include <cstdio>

int main(int argumentCount, char** arguments) {
    using namespace fleetwise;
    if (argumentCount != 3) return 2;
    const QCoreApplication application(argumentCount, arguments);
    SystemPowerAssertions assertions(QDBusConnection::connectToBus(arguments[1], "system"),
                                     QDBusConnection::connectToBus(arguments[2], "session"));
    StayAwake awake(assertions);
    awake.set(true, currentDate());
    QTimer look;
    QObject::connect(&look, &QTimer::timeout, &look, [&] {
        if (!awake.isHeld()) return;
        look.stop();
        std::puts("held");
        std::fflush(stdout);
    });
    look.start(std::chrono::milliseconds(1));
    return QCoreApplication::exec();
}
