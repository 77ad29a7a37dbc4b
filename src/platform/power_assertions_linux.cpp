// Sleep: org.freedesktop.login1(5), Inhibit. The screen: the "Idle Inhibition Service" that
// desktops agreed on; some have it only at its older path.

#include "platform/power_assertions.h"

#include <QDBusError>
#include <QDBusMessage>
#include <QDBusPendingCall>
#include <QDBusPendingCallWatcher>
#include <QDBusReply>
#include <QDBusUnixFileDescriptor>
#include <QTimer>

#include <climits>
#include <utility>

namespace fleetwise {

namespace {

const QString inhibitorName = QStringLiteral("Fleetwise");
const QString screenSaver = QStringLiteral("org.freedesktop.ScreenSaver");
const QString screenSaverPath = QStringLiteral("/org/freedesktop/ScreenSaver");
const QString olderScreenSaverPath = QStringLiteral("/ScreenSaver");

/// Held while the descriptor is open.
class SleepLock final : public PowerAssertion {
public:
    explicit SleepLock(const QDBusUnixFileDescriptor& given) : descriptor(given) {}

private:
    QDBusUnixFileDescriptor descriptor;
};

/// Held until it is given back, or the service sees this program leave the bus. It is given back to
/// the very program that gave it: the cookie means nothing, or another's, to one that came after.
class ScreenSaverInhibition final : public PowerAssertion {
public:
    ScreenSaverInhibition(QDBusConnection givenBus, QString givenOwner, QString givenPath,
                          quint32 givenCookie)
        : bus(std::move(givenBus)),
          owner(std::move(givenOwner)),
          path(std::move(givenPath)),
          cookie(givenCookie) {}

    ~ScreenSaverInhibition() override {
        auto message =
            QDBusMessage::createMethodCall(owner, path, screenSaver, QStringLiteral("UnInhibit"));
        message << cookie;
        bus.send(message);
    }

private:
    QDBusConnection bus;
    QString owner;
    QString path;
    quint32 cookie;
};

bool isUnknown(const QDBusMessage& answer) {
    switch (QDBusError(answer).type()) {
        case QDBusError::UnknownObject:
        case QDBusError::UnknownInterface:
        case QDBusError::UnknownMethod:
            return true;
        default:
            return false;
    }
}

}  // namespace

SystemPowerAssertions::SystemPowerAssertions(QDBusConnection givenSystemBus,
                                             QDBusConnection givenSessionBus,
                                             std::chrono::milliseconds givenTimeLimit)
    : systemBus(std::move(givenSystemBus)),
      sessionBus(std::move(givenSessionBus)),
      timeLimit(givenTimeLimit),
      questions(std::make_unique<QObject>()) {}

SystemPowerAssertions::~SystemPowerAssertions() = default;

void SystemPowerAssertions::take(PowerAssertionType type, const std::string& reason, Taken taken) {
    switch (type) {
        case PowerAssertionType::systemSleep:
            takeSleepLock(reason, std::move(taken));
            break;
        case PowerAssertionType::displaySleep:
            inhibitScreenSaver(screenSaverPath, reason, std::move(taken));
            break;
    }
}

void SystemPowerAssertions::ask(const QDBusConnection& bus, const QDBusMessage& question,
                                Taken taken, Answered answered) {
    if (!bus.isConnected()) {
        QTimer::singleShot(0, questions.get(), [taken = std::move(taken)] { taken(nullptr); });
        return;
    }
    // With a limit of the bus's own, a late answer would be dropped, and what it grants stay held.
    constexpr int withoutLimit = INT_MAX;
    auto* watcher =
        new QDBusPendingCallWatcher(bus.asyncCall(question, withoutLimit), questions.get());
    const auto waiting = std::make_shared<Taken>(std::move(taken));
    QTimer::singleShot(timeLimit, watcher, [waiting] {
        if (*waiting) std::exchange(*waiting, {})(nullptr);
    });
    QObject::connect(watcher, &QDBusPendingCallWatcher::finished, questions.get(),
                     [waiting, answered = std::move(answered)](QDBusPendingCallWatcher* answer) {
                         answer->deleteLater();
                         answered(answer->reply(), std::exchange(*waiting, {}));
                     });
}

void SystemPowerAssertions::takeSleepLock(const std::string& reason, Taken taken) {
    auto question = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.login1"), QStringLiteral("/org/freedesktop/login1"),
        QStringLiteral("org.freedesktop.login1.Manager"), QStringLiteral("Inhibit"));
    question << QStringLiteral("sleep") << inhibitorName << QString::fromStdString(reason)
             << QStringLiteral("block");
    ask(systemBus, question, std::move(taken), [](const QDBusMessage& answer, const Taken& give) {
        const QDBusReply<QDBusUnixFileDescriptor> descriptor(answer);
        if (!give) return;
        const bool isHeld = descriptor.isValid() && descriptor.value().isValid();
        give(isHeld ? std::make_unique<SleepLock>(descriptor.value()) : nullptr);
    });
}

void SystemPowerAssertions::inhibitScreenSaver(const QString& path, const std::string& reason,
                                               Taken taken) {
    auto question =
        QDBusMessage::createMethodCall(screenSaver, path, screenSaver, QStringLiteral("Inhibit"));
    question << inhibitorName << QString::fromStdString(reason);
    ask(sessionBus, question, std::move(taken),
        [this, path, reason](const QDBusMessage& answer, Taken give) {
            const QDBusReply<quint32> cookie(answer);
            std::unique_ptr<PowerAssertion> inhibition;
            if (cookie.isValid()) {
                inhibition = std::make_unique<ScreenSaverInhibition>(sessionBus, answer.service(),
                                                                     path, cookie.value());
            }
            if (!give) return;
            if (isUnknown(answer) && path != olderScreenSaverPath) {
                inhibitScreenSaver(olderScreenSaverPath, reason, std::move(give));
            } else {
                give(std::move(inhibition));
            }
        });
}

}  // namespace fleetwise
