#include "platform/bus_signal.h"
#include "platform/desktop_notifications.h"
#include "platform/notify_call.h"

#include <QDBusConnection>
#include <QDBusError>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusServiceWatcher>
#include <QTimer>

#include <algorithm>
#include <chrono>
#include <limits>
#include <optional>
#include <utility>
#include <vector>

namespace fleetwise {

namespace {

constexpr QLatin1String notificationService("org.freedesktop.Notifications");
constexpr QLatin1String notificationPath("/org/freedesktop/Notifications");

constexpr std::chrono::seconds retryTime(10);

/// An answer that the bus dropped for being late would leave a notification that nobody knows.
constexpr int withoutLimit = std::numeric_limits<int>::max();

}  // namespace

class DesktopNotifications::Service final : public QObject {
public:
    Service(const QDBusConnection& givenBus, Activated givenActivated, Refused givenRefused)
        : bus(givenBus),
          activated(std::move(givenActivated)),
          refused(std::move(givenRefused)),
          closed(bus, notificationPath, notificationService, QStringLiteral("NotificationClosed")),
          invoked(bus, notificationPath, notificationService, QStringLiteral("ActionInvoked")),
          owners(notificationService, bus, QDBusServiceWatcher::WatchForOwnerChange) {
        connect(&closed, &BusSignal::received, this, [this](const QDBusMessage& message) {
            if (message.service() == owner) forget(message.arguments().value(0).toUInt());
        });
        connect(&invoked, &BusSignal::received, this, [this](const QDBusMessage& message) {
            if (message.service() == owner) {
                activate(message.arguments().value(0).toUInt(),
                         message.arguments().value(1).toString());
            }
        });
        retry.setSingleShot(true);
        connect(&retry, &QTimer::timeout, this, &Service::askForCapabilities);
        connect(&owners, &QDBusServiceWatcher::serviceOwnerChanged, this,
                [this](const QString&, const QString&, const QString& next) { followTo(next); });
    }

    /// Nobody would take the answers to what is still to be seen.
    ~Service() override {
        for (const Entry& one : shown) {
            if (one.id != 0) bus.send(call(owner, QStringLiteral("CloseNotification"), {one.id}));
        }
    }

    void requestAuthorization(Answer givenAnswered) {
        answered = std::move(givenAnswered);
        if (bus.isConnected()) {
            askWhoCanBeStarted();
            return askForCapabilities();
        }
        QTimer::singleShot(0, this, [this] { tell(false); });
    }

    void post(const Notification& notification) {
        if (owner.isEmpty()) return;
        const auto found = find(notification.identifier);
        if (found == shown.end()) {
            if (shown.size() == maximumKnown) shown.erase(shown.begin());
            send(shown.emplace_back(), notification);
        } else if (found->answer) {
            found->isWithdrawn = false;
            found->next = notification;
        } else {
            send(*found, notification);
        }
    }

    void withdraw(const std::string& identifier) {
        const auto found = find(identifier);
        if (found == shown.end()) return;
        if (found->answer) {
            found->isWithdrawn = true;
            found->next.reset();
        } else {
            close(found);
        }
    }

private:
    /// A notification that can be seen, or is about to be. There is never more than one call of
    /// Notify under way for it: only its answer tells the id that the next one replaces.
    struct Entry {
        std::string identifier;
        std::string sessionId;
        NotificationAction button = NotificationAction::open;
        uint id = 0;  ///< the service's; 0 where it is not known
        std::unique_ptr<QDBusPendingCallWatcher> answer;  ///< to Notify, while that is under way
        Notification content;                             ///< what it was sent with
        std::optional<Notification> next;                 ///< to be shown after the answer
        bool isWithdrawn = false;                         ///< to be closed after the answer
    };
    using Shown = std::vector<Entry>;

    Shown::iterator find(const std::string& identifier) {
        return std::find_if(shown.begin(), shown.end(),
                            [&](const Entry& one) { return one.identifier == identifier; });
    }

    Shown::iterator find(uint id) {
        return std::find_if(shown.begin(), shown.end(),
                            [id](const Entry& one) { return one.id == id && id != 0; });
    }

    static QDBusMessage call(const QString& receiver, const QString& method,
                             const QVariantList& arguments = {}) {
        auto message =
            QDBusMessage::createMethodCall(receiver, notificationPath, notificationService, method);
        message.setArguments(arguments);
        return message;
    }

    void askForCapabilities() {
        // To the service by its name, so that the bus starts it.
        question = std::make_unique<QDBusPendingCallWatcher>(
            bus.asyncCall(call(notificationService, QStringLiteral("GetCapabilities"))));
        connect(question.get(), &QDBusPendingCallWatcher::finished, this, [this] {
            const QDBusPendingReply<QStringList> reply = *question;
            question.release()->deleteLater();
            const QString answerer = reply.reply().service();
            const bool isOfAnother = !newestOwner.isEmpty() && newestOwner != answerer;
            if (!reply.isError() && isOfAnother) return askForCapabilities();
            if (!reply.isError()) {
                owner = answerer;
                capabilities = reply.value();
            }
            tell(!reply.isError());
            if (reply.isError() && mayAnswerLater(reply.error().type())) retry.start(retryTime);
        });
    }

    /// One that runs may not have had the time to answer.
    bool mayAnswerLater(QDBusError::ErrorType error) const {
        return !newestOwner.isEmpty() || error == QDBusError::NoReply ||
               error == QDBusError::Timeout || error == QDBusError::TimedOut;
    }

    void askWhoCanBeStarted() {
        inventory =
            std::make_unique<QDBusPendingCallWatcher>(bus.asyncCall(QDBusMessage::createMethodCall(
                QStringLiteral("org.freedesktop.DBus"), QStringLiteral("/org/freedesktop/DBus"),
                QStringLiteral("org.freedesktop.DBus"), QStringLiteral("ListActivatableNames"))));
        connect(inventory.get(), &QDBusPendingCallWatcher::finished, this, [this] {
            const QDBusPendingReply<QStringList> reply = *inventory;
            inventory.release()->deleteLater();
            canBeStarted = !reply.isError() && reply.value().contains(notificationService);
        });
    }

    void followTo(const QString& nextOwner) {
        newestOwner = nextOwner;
        retry.stop();
        if (!nextOwner.isEmpty()) askWhoCanBeStarted();
        // Whoever came because of the question will answer it.
        if (question && owner.isEmpty() && !nextOwner.isEmpty()) return;
        // The call that started it is still under way, and stands among what is shown.
        const bool wasStartedByUs = isResting() && !nextOwner.isEmpty();
        if (wasStartedByUs) {
            owner = nextOwner;
            // It may be another program than the one before.
            return askForCapabilities();
        }
        const std::vector<Notification> lost = unanswered();
        const bool rests = nextOwner.isEmpty() && canBeStarted && told == true && lost.empty();
        owner = rests ? QString(notificationService) : QString();
        shown.clear();
        question.reset();
        if (!answered || rests) return;
        tell(false);
        for (const Notification& notification : lost)
            refused(notification);
        if (!nextOwner.isEmpty() || canBeStarted) askForCapabilities();
    }

    /// What the service was given, and may not have shown.
    std::vector<Notification> unanswered() const {
        std::vector<Notification> notifications;
        for (const Entry& one : shown) {
            if (one.answer && !one.isWithdrawn)
                notifications.push_back(one.next.value_or(one.content));
        }
        return notifications;
    }

    /// Some services end while there is nothing to show. The bus starts them with the next call.
    bool isResting() const { return owner == notificationService; }

    void tell(bool isAvailable) {
        if (std::exchange(told, isAvailable) != isAvailable) answered(isAvailable);
    }

    void send(Entry& one, const Notification& notification) {
        one.identifier = notification.identifier;
        one.sessionId = notification.sessionId;
        one.button = notification.button;
        one.content = notification;
        one.answer = std::make_unique<QDBusPendingCallWatcher>(
            bus.asyncCall(call(owner, QStringLiteral("Notify"),
                               notifyArguments(notification, capabilities, one.id)),
                          withoutLimit));
        connect(one.answer.get(), &QDBusPendingCallWatcher::finished, this,
                [this, identifier = one.identifier] { takeAnswer(find(identifier)); });
    }

    void takeAnswer(Shown::iterator one) {
        const QDBusPendingReply<uint> reply = *one->answer;
        one->answer.release()->deleteLater();
        if (reply.isError()) {
            const Notification lost = one->next.value_or(one->content);
            const bool isMissed = !one->isWithdrawn;
            shown.erase(one);
            if (isResting()) {
                canBeStarted = false;
                followTo({});
            }
            if (isMissed) refused(lost);
            return;
        }
        one->id = reply.value();
        if (one->isWithdrawn) {
            close(one);
        } else if (one->next) {
            send(*one, *std::exchange(one->next, {}));
        }
    }

    void close(Shown::iterator one) {
        bus.asyncCall(call(owner, QStringLiteral("CloseNotification"), {one->id}));
        shown.erase(one);
    }

    void forget(uint id) {
        const auto found = find(id);
        if (found == shown.end()) return;
        if (found->answer) {
            found->id = 0;
        } else {
            shown.erase(found);
        }
    }

    void activate(uint id, const QString& key) {
        const auto found = find(id);
        if (found == shown.end() || found->sessionId.empty()) return;
        const bool isClick = key == QLatin1String(clickKey);
        if (!isClick && key != buttonKey(found->button)) return;
        const auto action = isClick ? NotificationAction::focus : found->button;
        const std::string sessionId = found->sessionId;
        // Some services leave that to the program.
        withdraw(std::string(found->identifier));
        activated(sessionId, action);
    }

    QDBusConnection bus;
    const Activated activated;
    const Refused refused;
    BusSignal closed;
    BusSignal invoked;
    QDBusServiceWatcher owners;
    Answer answered;
    std::optional<bool> told;  ///< what was answered last
    /// The connection of the service, its name while it rests; empty while there is none.
    QString owner;
    QString newestOwner;        ///< as the bus told last; empty where it told nothing
    bool canBeStarted = false;  ///< by the bus, when it is called
    QStringList capabilities;
    QTimer retry;                                        ///< asks again
    std::unique_ptr<QDBusPendingCallWatcher> question;   ///< about the capabilities
    std::unique_ptr<QDBusPendingCallWatcher> inventory;  ///< about what can be started
    Shown shown;                                         ///< oldest first
};

DesktopNotifications::DesktopNotifications(const QDBusConnection& bus, Activated activated,
                                           Refused refused)
    : service(std::make_unique<Service>(bus, std::move(activated), std::move(refused))) {}

DesktopNotifications::~DesktopNotifications() = default;

void DesktopNotifications::requestAuthorization(Answer answered) {
    service->requestAuthorization(std::move(answered));
}

void DesktopNotifications::post(const Notification& notification) {
    service->post(notification);
}

void DesktopNotifications::withdraw(const std::string& identifier) {
    service->withdraw(identifier);
}

}  // namespace fleetwise
