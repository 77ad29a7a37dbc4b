#pragma once

#include "reactions/power_assertions.h"

#include <QDBusConnection>

#include <chrono>
#include <functional>
#include <memory>

class QDBusMessage;
class QObject;

namespace fleetwise {

/// Those of the desktop: logind's inhibitor locks against sleep, the screen saver's inhibition
/// against a blank screen. Both end with this program however it ends. Needs Qt's event loop.
class SystemPowerAssertions final : public PowerAssertions {
public:
    /// Where a bus is not connected, all is refused. A service that does not answer within
    /// `timeLimit` counts as a refusal.
    SystemPowerAssertions(QDBusConnection systemBus, QDBusConnection sessionBus,
                          std::chrono::milliseconds timeLimit = std::chrono::seconds(25));
    ~SystemPowerAssertions() override;

    void take(PowerAssertionType type, const std::string& reason, Taken taken) override;

private:
    using Answered = std::function<void(const QDBusMessage& answer, Taken taken)>;

    /// `answered` gets `taken`, or an empty one where the time limit has passed: then what was
    /// asked for is to be given back.
    void ask(const QDBusConnection& bus, const QDBusMessage& question, Taken taken,
             Answered answered);
    void takeSleepLock(const std::string& reason, Taken taken);
    void inhibitScreenSaver(const QString& path, const std::string& reason, Taken taken);

    const QDBusConnection systemBus;
    const QDBusConnection sessionBus;
    const std::chrono::milliseconds timeLimit;
    std::unique_ptr<QObject> questions;  ///< the parent of those under way
};

}  // namespace fleetwise
