// Power assertions on a message bus of the test's own, with services that answer as it wants.

#include "platform/power_assertions.h"

#include "platform/event_loop.h"
#include "platform/peer_program.h"
#include "platform/private_bus.h"

#include <QDBusMessage>
#include <QDBusServiceWatcher>
#include <QDBusUnixFileDescriptor>
#include <QDBusVirtualObject>
#include <QProcess>
#include <gmock/gmock.h>
#include <poll.h>

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <optional>

namespace fleetwise::testing {
namespace {

using Type = PowerAssertionType;

/// How a service answers Inhibit.
enum class Manner { grants, refuses, isSilent };

/// logind and the screen saver in one; each is there only once it is offered.
class FakePower final : public QDBusVirtualObject {
public:
    explicit FakePower(const QDBusConnection& givenBus) : bus(givenBus) {
        gone.setConnection(bus);
        gone.setWatchMode(QDBusServiceWatcher::WatchForUnregistration);
        connect(
            &gone, &QDBusServiceWatcher::serviceUnregistered, this, [this](const QString& owner) {
                std::erase_if(inhibitions, [&](const auto& held) { return held.owner == owner; });
            });
    }
    ~FakePower() override {
        for (const int lock : locks)
            ::close(lock);
    }

    void offer(const QString& name, const QString& path) {
        bus.registerVirtualObject(path, this);
        EXPECT_TRUE(bus.registerService(name));
    }
    void offerLogind() { offer("org.freedesktop.login1", "/org/freedesktop/login1"); }
    void offerScreenSaver(const QString& path = "/org/freedesktop/ScreenSaver") {
        offer("org.freedesktop.ScreenSaver", path);
    }

    QString introspect(const QString&) const override { return {}; }

    bool handleMessage(const QDBusMessage& message, const QDBusConnection&) override {
        if (message.member() == QLatin1String("UnInhibit")) {
            std::erase(inhibitions,
                       Inhibition{message.service(), message.arguments().value(0).toUInt()});
            return true;
        }
        asked.push_back(message);
        if (manner != Manner::isSilent) answer();
        return true;
    }

    /// Answers the latest Inhibit.
    void answer() {
        const QDBusMessage& message = asked.back();
        if (manner == Manner::refuses) {
            bus.send(message.createErrorReply(QDBusError::AccessDenied, "no"));
        } else if (message.interface() == QLatin1String("org.freedesktop.ScreenSaver")) {
            gone.addWatchedService(message.service());
            inhibitions.push_back({message.service(), 40u + static_cast<uint>(asked.size())});
            bus.send(message.createReply(inhibitions.back().cookie));
        } else {
            int ends[2];
            ASSERT_EQ(::pipe2(ends, O_CLOEXEC), 0);
            locks.push_back(ends[0]);
            bus.send(message.createReply(QVariant::fromValue(QDBusUnixFileDescriptor(ends[1]))));
            ::close(ends[1]);
        }
    }

    /// Of both kinds.
    std::size_t held() const {
        return inhibitions.size() +
               static_cast<std::size_t>(std::ranges::count_if(locks, isOpenElsewhere));
    }

    struct Inhibition {
        QString owner;
        uint cookie = 0;
        bool operator==(const Inhibition&) const = default;
    };

    QDBusConnection bus;
    Manner manner = Manner::grants;
    std::vector<QDBusMessage> asked;

private:
    static bool isOpenElsewhere(int lock) {
        ::pollfd end{.fd = lock, .events = POLLIN, .revents = 0};
        return ::poll(&end, 1, 0) == 0;
    }

    QDBusServiceWatcher gone;
    std::vector<Inhibition> inhibitions;
    std::vector<int> locks;  ///< our ends
};

class PowerAssertionsTest : public EventLoopTest {
protected:
    void SetUp() override {
        if (!PrivateBus::isPossible()) GTEST_SKIP() << "dbus-daemon is not installed";
        bus.emplace();
        power.emplace(bus->connect("power"));
        assertions.emplace(bus->connect("system"), bus->connect("session"));
    }

    void take(Type type) {
        answers = 0;
        assertions->take(type, "weil", [this](auto given) {
            ++answers;
            taken = std::move(given);
        });
        EXPECT_EQ(answers, 0) << "not before it returns";
    }

    bool isTaken(Type type) {
        take(type);
        EXPECT_TRUE(waitUntil([&] { return answers > 0; }));
        return taken != nullptr;
    }

    std::optional<PrivateBus> bus;
    std::optional<FakePower> power;
    std::optional<SystemPowerAssertions> assertions;
    std::unique_ptr<PowerAssertion> taken;
    int answers = 0;
};

TEST_F(PowerAssertionsTest, areHeldUntilTheyAreLetGo) {
    power->offerLogind();
    power->offerScreenSaver();
    const struct {
        Type type;
        QVariantList arguments;
    } rows[] = {
        {Type::systemSleep, {"sleep", "Fleetwise", "weil", "block"}},
        {Type::displaySleep, {"Fleetwise", "weil"}},
    };
    for (const auto& row : rows) {
        ASSERT_TRUE(isTaken(row.type));
        EXPECT_EQ(power->asked.back().arguments(), row.arguments);
        EXPECT_EQ(power->held(), 1u);
        taken.reset();
        EXPECT_TRUE(waitUntil([&] { return power->held() == 0; }));
    }
}

TEST_F(PowerAssertionsTest, findsTheScreenSaverAtItsOlderPath) {
    power->offerScreenSaver("/ScreenSaver");
    ASSERT_TRUE(isTaken(Type::displaySleep));
    taken.reset();
    EXPECT_TRUE(waitUntil([&] { return power->held() == 0; }));
}

TEST_F(PowerAssertionsTest, areRefused) {
    for (const Type type : {Type::systemSleep, Type::displaySleep})
        EXPECT_FALSE(isTaken(type)) << "no service";
    power->offerLogind();
    power->offerScreenSaver();
    power->manner = Manner::refuses;
    for (const Type type : {Type::systemSleep, Type::displaySleep})
        EXPECT_FALSE(isTaken(type)) << "refused";
    const QDBusConnection none("none");
    assertions.emplace(none, none);
    for (const Type type : {Type::systemSleep, Type::displaySleep})
        EXPECT_FALSE(isTaken(type)) << "no bus";
}

TEST_F(PowerAssertionsTest, gaveUpOnServicesThatDoNotAnswerInTime) {
    power->offerLogind();
    power->offerScreenSaver();
    power->manner = Manner::isSilent;
    assertions.emplace(bus->connect("impatient system"), bus->connect("impatient session"),
                       std::chrono::milliseconds(1));
    for (const Type type : {Type::systemSleep, Type::displaySleep}) {
        EXPECT_FALSE(isTaken(type));
        ASSERT_TRUE(waitUntil([&] { return !power->asked.empty(); }));
        power->manner = Manner::grants;
        power->answer();
        EXPECT_TRUE(waitUntil([&] { return power->held() == 0; })) << "what comes late is let go";
        EXPECT_EQ(answers, 1);
        power->manner = Manner::isSilent;
        power->asked.clear();
    }
}

TEST_F(PowerAssertionsTest, areLetGoWhenTheProgramIsKilled) {
    power->offerLogind();
    power->offerScreenSaver();
    QProcess holder;
    holder.start(FLEETWISE_AWAKE_HOLDER,
                 {QString::fromStdString(bus->address()), QString::fromStdString(bus->address())});
    // By then the fake has been told of what it watches, too.
    EXPECT_TRUE(waitUntil([&] { return holder.canReadLine(); }));
    EXPECT_EQ(power->held(), 2U);
    holder.kill();
    holder.waitForFinished();
    EXPECT_EQ(holder.exitStatus(), QProcess::CrashExit);
    EXPECT_TRUE(waitUntil([&] { return power->held() == 0; }));
}

}  // namespace
}  // namespace fleetwise::testing
