// Notifications on a message bus of the test's own: with dunst, as users have it, and with a
// service that answers when the test wants it to.

#include "platform/desktop_notifications.h"

#include "platform/event_loop.h"
#include "platform/peer_program.h"
#include "platform/private_bus.h"
#include "support/temporary_directory.h"

#include <QDBusArgument>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusPendingCall>
#include <QDBusVariant>
#include <QDBusVirtualObject>
#include <gmock/gmock.h>

#include <signal.h>
#include <sys/stat.h>

#include <memory>
#include <optional>

namespace fleetwise::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

const QString serviceName = QStringLiteral("org.freedesktop.Notifications");
const QString servicePath = QStringLiteral("/org/freedesktop/Notifications");

/// A notification service that keeps what it is asked.
class RecordingService final : public QDBusVirtualObject {
public:
    RecordingService(const QDBusConnection& givenBus, QStringList givenCapabilities)
        : bus(givenBus), capabilities(std::move(givenCapabilities)) {
        bus.registerVirtualObject(servicePath, this);
        EXPECT_TRUE(bus.registerService(serviceName));
    }

    QString introspect(const QString&) const override { return {}; }

    bool handleMessage(const QDBusMessage& message, const QDBusConnection&) override {
        if (message.member() == QLatin1String("GetCapabilities")) {
            bus.send(message.createReply(capabilities));
        } else if (message.member() == QLatin1String("Notify")) {
            notified.push_back(message);
            const uint replaced = message.arguments().value(1).toUInt();
            if (answersAtOnce) answer(replaced != 0 ? replaced : nextId++);
        } else if (message.member() == QLatin1String("CloseNotification")) {
            closed.push_back(message.arguments().value(0).toUInt());
        }
        return true;
    }

    /// Answers the latest Notify.
    void answer(uint id) { bus.send(notified.back().createReply(id)); }

    static void emitSignal(QDBusConnection sender, const char* name,
                           const QVariantList& arguments) {
        auto signal =
            QDBusMessage::createSignal(servicePath, serviceName, QString::fromLatin1(name));
        signal.setArguments(arguments);
        sender.send(signal);
    }

    QDBusConnection bus;
    QStringList capabilities;
    std::vector<QDBusMessage> notified;
    std::vector<uint> closed;
    bool answersAtOnce = true;
    uint nextId = 7;
};

class DesktopNotificationsTest : public EventLoopTest {
protected:
    void SetUp() override {
        if (!PrivateBus::isPossible()) GTEST_SKIP() << "dbus-daemon is not installed";
        bus.emplace();
    }

    /// The object under test, which has asked, and was answered.
    DesktopNotifications& centre() {
        if (!made) {
            centreBus = bus->connect("centre");
            made.emplace(
                *centreBus,
                [this](const std::string& id, auto action) {
                    activations.emplace_back(id, action);
                },
                [this](const Notification& one) { refused.push_back(one.identifier); });
            made->requestAuthorization([this](bool isGiven) { answers.push_back(isGiven); });
            EXPECT_THAT(answers, IsEmpty()) << "not before it returns";
            EXPECT_TRUE(waitUntil([&] { return !answers.empty(); }));
        }
        return *made;
    }

    static Notification about(const std::string& identifier) {
        return {.identifier = identifier,
                .title = "Umbau",
                .subtitle = "Wartet",
                .body = "rm -rf build?",
                .sessionId = "s1",
                .button = NotificationAction::resume};
    }

    std::optional<PrivateBus> bus;
    std::vector<bool> answers;
    std::vector<std::pair<std::string, NotificationAction>> activations;
    std::vector<std::string> refused;
    /// Returns when the centre has been told what the bus knows now.
    void letCentreKnow() {
        const auto answer = centreBus->asyncCall(QDBusMessage::createMethodCall(
            "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "GetId"));
        EXPECT_TRUE(waitUntil([&] { return answer.isFinished(); }));
        letPass(1);
    }

    std::optional<QDBusConnection> centreBus;
    std::optional<DesktopNotifications> made;
};

TEST_F(DesktopNotificationsTest, withoutAServiceNothingIsAllowed) {
    centre().post(about("a"));
    centre().withdraw("a");
    EXPECT_THAT(answers, ElementsAre(false));
    {
        RecordingService service(bus->connect("service"), {});
        EXPECT_TRUE(waitUntil([&] { return answers.back(); }));
        service.bus.unregisterService(serviceName);
        EXPECT_TRUE(waitUntil([&] { return !answers.back(); }));
        service.bus.unregisterObject(servicePath);
    }
    answers.clear();
    DesktopNotifications offline(QDBusConnection(QStringLiteral("none")), {}, {});
    offline.requestAuthorization([this](bool isGiven) { answers.push_back(isGiven); });
    EXPECT_TRUE(waitUntil([&] { return !answers.empty(); }));
    EXPECT_THAT(answers, ElementsAre(false));
}

TEST_F(DesktopNotificationsTest, saysOnlyWhatTheServiceUnderstands) {
    RecordingService service(bus->connect("service"), {"actions", "body", "body-markup"});
    const std::string huge(1'000'000, 'x');
    Notification nasty = about("a");
    nasty.title = " <b>x</b>\n<img src=\"/\">&\x1b[31m\xff";
    nasty.subtitle = "<b>\"&";
    nasty.body = huge + "<";
    nasty.hasSound = true;
    centre().post(nasty);
    ASSERT_TRUE(waitUntil([&] { return service.notified.size() == 1; }));
    const QStringList actions{"default", "Fenster nach vorn", "resume", "Fortsetzen"};
    const QVariantMap shared{{"desktop-entry", "fleetwise"},
                             {"urgency", QVariant::fromValue<uchar>(1)}};
    const auto sent = [&] { return service.notified.back().arguments(); };
    const auto hints = [&] { return qdbus_cast<QVariantMap>(sent()[6]); };
    EXPECT_EQ(service.notified.back().signature(), "susssasa{sv}i");
    EXPECT_EQ(sent().mid(0, 4),
              (QVariantList{"Fleetwise", 0u, "fleetwise",
                            QString::fromUtf8("<b>x</b> <img src=\"/\">& [31m\uFFFD")}));
    EXPECT_EQ(sent()[4].toString(),
              QString::fromUtf8("&lt;b&gt;&quot;&amp;\n") + QString(499, 'x') + u'…');
    EXPECT_EQ(sent()[5].toStringList(), actions);
    QVariantMap expected = shared;
    expected["sound-name"] = "message-new-instant";
    EXPECT_EQ(hints(), expected);
    EXPECT_EQ(hints()["urgency"].typeId(), QMetaType::UChar);

    service.bus.unregisterService(serviceName);
    ASSERT_TRUE(waitUntil([&] { return !answers.back(); }));
    service.capabilities = {"body"};
    service.bus.registerService(serviceName);
    ASSERT_TRUE(waitUntil([&] { return answers.back(); }));
    nasty.body.clear();
    nasty.hasSound = false;
    centre().post(nasty);
    ASSERT_TRUE(waitUntil([&] { return service.notified.size() == 2; }));
    EXPECT_EQ(sent()[1], 0u) << "the id was another service's";
    EXPECT_EQ(sent()[4], "<b>\"&") << "no markup there";
    EXPECT_EQ(sent()[5].toStringList(), QStringList());
    expected = shared;
    expected["suppress-sound"] = true;
    EXPECT_EQ(hints(), expected);
}

TEST_F(DesktopNotificationsTest, neverShowsOneIdentifierTwiceHoweverLateTheAnswers) {
    RecordingService service(bus->connect("service"), {"body"});
    service.answersAtOnce = false;
    const auto bodies = [&] {
        std::vector<std::pair<uint, QString>> sent;
        for (const QDBusMessage& message : service.notified)
            sent.emplace_back(message.arguments()[1].toUInt(), message.arguments()[3].toString());
        return sent;
    };
    Notification second = about("a");
    second.title = "later";
    Notification last = second;
    last.title = "last";
    centre().post(about("a"));
    centre().post(second);
    centre().withdraw("a");
    centre().post(last);
    ASSERT_TRUE(waitUntil([&] { return !service.notified.empty(); }));
    service.answer(7);
    ASSERT_TRUE(waitUntil([&] { return service.notified.size() == 2; }));
    EXPECT_THAT(bodies(),
                ElementsAre(std::pair(0u, QString("Umbau")), std::pair(7u, QString("last"))));
    EXPECT_THAT(service.closed, IsEmpty());

    RecordingService::emitSignal(service.bus, "NotificationClosed", {7u, 2u});
    service.answer(8);
    centre().withdraw("a");
    EXPECT_TRUE(waitUntil([&] { return !service.closed.empty(); }));
    EXPECT_THAT(service.closed, ElementsAre(8u)) << "once it was known";
    RecordingService::emitSignal(service.bus, "NotificationClosed", {8u, 3u});
    centre().post(second);
    ASSERT_TRUE(waitUntil([&] { return service.notified.size() == 3; }));
    EXPECT_EQ(bodies().back(), std::pair(0u, QString("later")));
}

TEST_F(DesktopNotificationsTest, handsBackWhatIsRefusedAndClosesTheRestAtTheEnd) {
    RecordingService service(bus->connect("service"), {"body"});
    service.answersAtOnce = false;
    centre().post(about("a"));
    ASSERT_TRUE(waitUntil([&] { return service.notified.size() == 1; }));
    service.bus.send(service.notified.back().createErrorReply(QDBusError::LimitsExceeded, "full"));
    EXPECT_TRUE(waitUntil([&] { return !refused.empty(); }));
    EXPECT_THAT(std::exchange(refused, {}), ElementsAre("a"));
    centre().post(about("c"));
    centre().post(about("d"));
    centre().withdraw("d");
    ASSERT_TRUE(waitUntil([&] { return service.notified.size() == 3; }));
    service.bus.unregisterService(serviceName);
    EXPECT_TRUE(waitUntil([&] { return !answers.back(); }));
    EXPECT_THAT(refused, ElementsAre("c")) << "nobody knows whether it was shown";
    service.bus.registerService(serviceName);
    EXPECT_TRUE(waitUntil([&] { return answers.back(); }));
    service.notified.clear();
    service.answersAtOnce = true;
    centre().post(about("b"));
    ASSERT_TRUE(waitUntil([&] { return service.notified.size() == 1; }));
    centre().post(about("b"));
    ASSERT_TRUE(waitUntil([&] { return service.notified.size() == 2; }));
    made.reset();
    EXPECT_TRUE(waitUntil([&] { return !service.closed.empty(); }));
    EXPECT_THAT(service.closed, ElementsAre(7));
}

TEST_F(DesktopNotificationsTest, listensOnlyToTheServiceAndKnowsTheNewest) {
    RecordingService service(bus->connect("service"), {"actions", "body"});
    const QDBusConnection impostor = bus->connect("impostor");
    const std::size_t count = DesktopNotifications::maximumKnown + 1;
    for (std::size_t index = 0; index < count; ++index)
        centre().post(about(std::to_string(index)));
    ASSERT_TRUE(waitUntil([&] { return service.notified.size() == count; }));
    const uint first = 7;
    const uint newest = first + static_cast<uint>(count) - 1;
    RecordingService::emitSignal(impostor, "ActionInvoked", {newest, "default"});
    // What one program says after another is only in order when it heard of it.
    QDBusConnection(impostor).call(QDBusMessage::createMethodCall("org.freedesktop.DBus", "/",
                                                                  "org.freedesktop.DBus", "GetId"));
    for (const uint id : {first, newest + 1, 0u})
        RecordingService::emitSignal(service.bus, "ActionInvoked", {id, "default"});
    for (const char* key : {"open", "", "resume"})
        RecordingService::emitSignal(service.bus, "ActionInvoked", {newest, key});
    RecordingService::emitSignal(service.bus, "ActionInvoked", {newest - 1, "default"});
    EXPECT_TRUE(waitUntil([&] { return activations.size() == 2; }));
    EXPECT_THAT(activations, ElementsAre(std::pair("s1", NotificationAction::resume),
                                         std::pair("s1", NotificationAction::focus)));
}

/// With dunst on a screen without a monitor.
class DunstTest : public DesktopNotificationsTest {
protected:
    void SetUp() override {
        if (!isInstalled("dunst") || !isInstalled("Xvfb"))
            GTEST_SKIP() << "dunst or Xvfb is not installed";
        DesktopNotificationsTest::SetUp();
        if (!bus) return;
        screen.emplace("Xvfb",
                       std::vector<std::string>{"-displayfd", "1", "-screen", "0", "640x480x24",
                                                "-nolisten", "tcp"},
                       std::map<std::string, std::string>{});
        display = ":" + screen->nextLine();
        // Its context menu chooses the button.
        home.write("dunstrc",
                   "[global]\n markup = full\n dmenu = /bin/grep Fortsetzen\n"
                   "[all]\n timeout = 0\n summary = \"*\"\n script = " +
                       home.at("show") + "\n");
        home.write("show", "#!/bin/sh\nprintf '%s|%s\\n' \"$DUNST_SUMMARY\" \"$DUNST_BODY\" >>" +
                               home.write("shown", ""));
        chmod(home.at("show").c_str(), 0700);
        start();
        user = bus->connect("user");
    }

    void start() {
        dunst.emplace(
            "dunst", std::vector{std::string("-conf"), home.at("dunstrc")},
            std::map<std::string, std::string>{{"DISPLAY", display},
                                               {"HOME", home.path()},
                                               {"DBUS_SESSION_BUS_ADDRESS", bus->address()}});
    }

    /// What dunstctl does.
    QVariant control(const char* member, const QVariantList& values = {}) {
        auto message = QDBusMessage::createMethodCall(serviceName, servicePath,
                                                      "org.dunstproject.cmd0", member);
        message.setArguments(values);
        return user->call(message).arguments().value(0);
    }

    uint count(const char* queue) {
        auto message = QDBusMessage::createMethodCall(serviceName, servicePath,
                                                      "org.freedesktop.DBus.Properties", "Get");
        message.setArguments({"org.dunstproject.cmd0", queue});
        return user->call(message).arguments().value(0).value<QDBusVariant>().variant().toUInt();
    }
    uint displayed() { return count("displayedLength"); }

    std::string shown() const { return contentsOf(home.at("shown")); }

    TemporaryDirectory home;
    std::optional<PeerProgram> screen;
    std::optional<PeerProgram> dunst;
    std::optional<QDBusConnection> user;
    std::string display;
};

TEST_F(DunstTest, showsReplacesAndWithdraws) {
    centre();
    ASSERT_TRUE(waitUntil([&] { return answers.back(); }));
    Notification notification = about("a");
    notification.title = "<b>x</b>";
    notification.body = "rm <i>build</i> & more?";
    centre().post(notification);
    std::string expected = "<b>x</b>|Wartet\nrm &lt;i&gt;build&lt;/i&gt; &amp; more?\n";
    EXPECT_TRUE(waitUntil([&] { return shown() == expected; })) << shown();
    notification.subtitle.clear();
    notification.body = "again";
    centre().post(notification);
    expected += "<b>x</b>|again\n";
    EXPECT_TRUE(waitUntil([&] { return shown() == expected; })) << shown();
    centre().post(about("b"));
    EXPECT_TRUE(waitUntil([&] { return displayed() == 2; }));
    centre().withdraw("a");
    EXPECT_TRUE(waitUntil([&] { return displayed() == 1; }));
    notification.identifier = "c";
    centre().post(notification);
    centre().withdraw("c");
    EXPECT_TRUE(waitUntil([&] { return count("historyLength") == 2; }));
    EXPECT_TRUE(waitUntil([&] { return displayed() == 1; }));
    control("NotificationCloseLast");
    EXPECT_TRUE(waitUntil([&] { return displayed() == 0; }));
    centre().withdraw("b");

    dunst.reset();
    EXPECT_TRUE(waitUntil([&] { return !answers.back(); }));
    start();
    EXPECT_TRUE(waitUntil([&] { return answers.back(); }));
    centre().post(about("a"));
    EXPECT_TRUE(waitUntil([&] { return displayed() == 1; }));
}

TEST_F(DunstTest, isStartedByTheBusWhenItIsNeeded) {
    dunst.reset();
    const auto& names = *user->interface();
    EXPECT_TRUE(waitUntil([&] { return !names.isServiceRegistered(serviceName); }));
    bus->offer(serviceName.toStdString(),
               home.write("start", "#!/bin/sh\nexport DISPLAY=" + display + " HOME=" + home.path() +
                                       "\nexec dunst -conf " + home.at("dunstrc") + "\n"));
    chmod(home.at("start").c_str(), 0700);
    centre().post(about("a"));
    EXPECT_TRUE(waitUntil([&] { return displayed() == 1; }));
    ASSERT_EQ(kill(static_cast<pid_t>(names.servicePid(serviceName)), SIGTERM), 0);
    EXPECT_TRUE(waitUntil([&] { return !names.isServiceRegistered(serviceName); }));
    letCentreKnow();
    centre().withdraw("a");
    EXPECT_FALSE(names.isServiceRegistered(serviceName));
    centre().post(about("b"));
    EXPECT_TRUE(waitUntil([&] { return displayed() == 1; }));
    centre().withdraw("b");
    EXPECT_TRUE(waitUntil([&] { return displayed() == 0; }));
    EXPECT_THAT(answers, ElementsAre(true));
}

TEST_F(DunstTest, tellsOfClicks) {
    centre();
    ASSERT_TRUE(waitUntil([&] { return answers.back(); }));
    centre().post(about("a"));
    EXPECT_TRUE(waitUntil([&] { return displayed() == 1; }));
    control("NotificationAction", {0u});
    EXPECT_TRUE(waitUntil([&] { return activations.size() == 1; }));
    EXPECT_TRUE(waitUntil([&] { return displayed() == 0; }));
    centre().post(about("a"));
    EXPECT_TRUE(waitUntil([&] { return displayed() == 1; }));
    control("ContextMenuCall");
    EXPECT_TRUE(waitUntil([&] { return activations.size() == 2; }));
    EXPECT_THAT(activations, ElementsAre(std::pair("s1", NotificationAction::focus),
                                         std::pair("s1", NotificationAction::resume)));
}

}  // namespace
}  // namespace fleetwise::testing
