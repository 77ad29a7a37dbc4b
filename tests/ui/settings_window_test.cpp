// The settings window as its user meets it: each control against the setting behind it, in both
// directions, and that it follows what others change.

#include "ui/settings/settings_window.h"

#include "cost/price_feed.h"
#include "cost/price_settings.h"
#include "monitor/feed_update.h"
#include "monitor/virtual_fleet.h"
#include "reactions/action_runner.h"
#include "reactions/webhook.h"
#include "ui/settings/settings_page.h"

#include <QCheckBox>
#include <QClipboard>
#include <QComboBox>
#include <QGuiApplication>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QSignalSpy>
#include <QSpinBox>
#include <QTest>
#include <QToolButton>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <stdexcept>

namespace fleetwise::testing {
namespace {

class NoDownload final : public FeedDownload {
public:
    void get(const std::string& /*address*/, std::function<void(Result)> /*done*/) override {}
};

class NoPoster final : public HttpPoster {
public:
    void post(const HttpPost& /*request*/, std::function<void(Result)> /*done*/) override {}
};

/// Switches on only while it is let.
class KeptLoginStart final : public LoginStart {
public:
    bool isOn() const override { return on; }
    tl::expected<void, std::string> set(bool isWanted) override {
        if (!fault.empty()) return tl::unexpected(fault);
        on = isWanted;
        return {};
    }
    bool on = false;
    std::string fault;
};

class SettingsWindowTest : public ::testing::Test, protected VirtualFleet {
protected:
    void open(const std::string& page) {
        window.showPage(page);
        window.bringUp();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&window));
        EXPECT_EQ(window.currentPageId(), page);
    }
    bool says(const QString& text) const {
        const auto labels = window.findChildren<QLabel*>();
        return std::ranges::any_of(labels, [&](const QLabel* label) {
            return label->isVisible() && label->text().contains(text);
        });
    }
    /// The visible control that screen readers call so.
    template <typename Control>
    Control& control(const QString& name) const {
        // What is new in a layout appears with the next events.
        QCoreApplication::processEvents();
        for (auto* found : window.findChildren<Control*>()) {
            QString spoken = found->accessibleName();
            if constexpr (std::is_base_of_v<QAbstractButton, Control>) {
                if (spoken.isEmpty()) spoken = found->text();
            }
            if (found->isVisible() && spoken == name) return *found;
        }
        throw std::runtime_error("no control " + name.toStdString());
    }
    static void choose(QComboBox& box, const QString& text) {
        box.setFocus();
        for (int step = 0; step < box.count() && box.currentText() != text; ++step)
            QTest::keyClick(&box, step == 0 ? Qt::Key_Home : Qt::Key_Down);
        EXPECT_EQ(box.currentText(), text);
    }

    NoDownload download;
    NoPoster poster;
    KeptLoginStart login;
    KeptCommands actionProcesses;
    ActionRunner actions{actionProcesses, [this] { return loop.now(); }};
    Webhook webhook{poster, "1", [this] { return loop.now(); }};
    PriceSettings prices{defaults, home.at("prices.json"), [](const auto&) {}};
    PriceFeed feed{home.at("prices.json"), prices};
    FeedUpdate update{loop, download, feed, "", "1"};
    std::vector<std::string> backups;
    SettingsWindow window{monitor,
                          {.actions = actions,
                           .sounds = sounds,
                           .webhook = webhook,
                           .prices = prices,
                           .priceFeed = feed,
                           .feedUpdate = update,
                           .loginStart = login,
                           .terminals =
                               [] {
                                   return std::vector<std::string>{"konsole", "xterm"};
                               },
                           .facts =
                               [] {
                                   return ProgramFacts{
                                       .version = "1.2",
                                       .read = {{"~/.claude", "Sitzungen"}},
                                       .written = {{"~/.local/state/fleetwise", "Zustand"}},
                                       .parts = {{"fmt 9", "MIT"}}};
                               },
                           .settingsBackups = [this] { return backups; },
                           .now = [this] { return loop.now(); }}};
};

TEST_F(SettingsWindowTest, everyPageFollowsItsSettingsBothWays) {
    begin({});
    struct Case {
        const char* page;
        const char* name;
        const Setting<bool>* setting;
    };
    for (const auto& [page, name, setting] :
         {Case{"general", "Wach bleiben, solange gearbeitet wird", &Settings::staysAwake},
          Case{"appearance", "5-Stunden-Fenster", &Settings::markShowsFiveHour},
          Case{"list", "Codex zeigen", &Settings::showsCodex},
          Case{"notifications", "Alles stumm", &Settings::isMuted}}) {
        SCOPED_TRACE(name);
        open(page);
        auto& box = control<QCheckBox>(QString::fromUtf8(name));
        const bool before = settings.get(*setting);
        EXPECT_EQ(box.isChecked(), before);
        QTest::keyClick(&box, Qt::Key_Space);
        EXPECT_EQ(settings.get(*setting), !before);
        monitor.change(*setting, before);
        EXPECT_EQ(box.isChecked(), before);
    }
    open("appearance");
    choose(control<QComboBox>("Farben"), "Dunkel");
    EXPECT_EQ(settings.get(Settings::appearanceMode), "dark");
    monitor.change(Settings::appearanceMode, "light");
    EXPECT_EQ(control<QComboBox>("Farben").currentText(), "Hell");
    open("list");
    auto& days = control<QSpinBox>("Tage, die Ruhende in der Liste bleiben");
    days.setFocus();
    days.selectAll();
    QTest::keyClicks(&days, "14");
    monitor.change(Settings::showsCodex, false);
    EXPECT_EQ(settings.get(Settings::dormantRetentionDays), 1) << "typed, but not yet entered";
    QTest::keyClick(&days, Qt::Key_Return);
    EXPECT_EQ(settings.get(Settings::dormantRetentionDays), 14);
}

TEST_F(SettingsWindowTest, turnsPagesByKeysAndRemembersItsPlace) {
    begin({});
    open("general");
    QTest::keyClick(&window, Qt::Key_3, Qt::ControlModifier);
    EXPECT_EQ(window.currentPageId(), "list");
    window.showPage("nonsense");
    EXPECT_EQ(window.currentPageId(), "list");
    auto& list = *window.findChild<QListWidget*>();
    for (int row = 0; row < list.count(); ++row) {
        list.setCurrentRow(row);
        const auto pages = window.findChildren<SettingsPage*>();
        const auto page = std::ranges::find_if(pages, &QWidget::isVisible);
        ASSERT_NE(page, pages.end());
        EXPECT_EQ((*page)->name(), list.item(row)->text());
    }
    QTest::keyClick(&window, Qt::Key_Escape);
    EXPECT_FALSE(window.isVisible());
    EXPECT_NE(settings.get(Settings::settingsGeometry), "");
}

TEST_F(SettingsWindowTest, tellsWhyItCannotStartAtLogin) {
    begin({});
    open("general");
    auto& box = control<QCheckBox>("Beim Anmelden starten");
    login.fault = "Der Ordner ist schreibgeschützt.";
    box.click();
    EXPECT_FALSE(box.isChecked());
    EXPECT_TRUE(says("schreibgeschützt"));
    login.fault.clear();
    box.click();
    EXPECT_TRUE(login.on);
    EXPECT_FALSE(says("schreibgeschützt"));
}

TEST_F(SettingsWindowTest, takesOnlyProgramsForTerminals) {
    begin({});
    open("general");
    auto& terminal = control<QComboBox>("Sitzungen fortsetzen in");
    choose(terminal, "xterm");
    EXPECT_EQ(settings.get(Settings::terminalPath), "xterm");
    choose(terminal, "Anderes …");
    auto& path = control<QLineEdit>("Programm");
    const auto enter = [&](const std::string& text) {
        path.selectAll();
        QTest::keyClicks(&path, QString::fromStdString(text));
        QTest::keyClick(&path, Qt::Key_Return);
    };
    for (const std::string& refused : {std::string("sh"), home.path(), home.at("gone")}) {
        enter(refused);
        EXPECT_TRUE(says("kein Programm")) << refused;
        EXPECT_EQ(settings.get(Settings::terminalPath), "xterm");
    }
    enter("/bin/sh");
    EXPECT_FALSE(says("kein Programm"));
    EXPECT_EQ(settings.get(Settings::terminalPath), "/bin/sh");
    choose(terminal, "Automatisch");
    EXPECT_EQ(settings.get(Settings::terminalPath), "");
    EXPECT_FALSE(path.isVisible());
}

TEST_F(SettingsWindowTest, choosesTheStatesAndKeepsUnknownNames) {
    settings.set(Settings::notifyingStates, {"decision", "later"});
    begin({});
    open("notifications");
    control<QCheckBox>(QString::fromStdString(label(SessionState::failed))).click();
    control<QCheckBox>(QString::fromStdString(label(SessionState::decision))).click();
    EXPECT_EQ(settings.get(Settings::notifyingStates), (Settings::Strings{"later", "failed"}));
}

TEST_F(SettingsWindowTest, listsExceptionsAlsoOfWhatIsGone) {
    settings.set(Settings::sessionNotifyOverrides,
                 Json{{"s:a", false}, {"s:gone", true}, {"p:/srv/lab", false}, {"s:odd", 7}});
    begin({session("a", SessionState::working)});
    open("notifications");
    EXPECT_TRUE(says("Sitzung in /srv/a"));
    EXPECT_TRUE(says("nicht mehr in der Liste"));
    EXPECT_TRUE(says("Projekt /srv/lab"));
    choose(control<QComboBox>("Mitteilungen von lab"), "Melden");
    control<QToolButton>("Ausnahme entfernen: gone").click();
    EXPECT_EQ(settings.get(Settings::sessionNotifyOverrides),
              (Json{{"s:a", false}, {"p:/srv/lab", true}, {"s:odd", 7}}));
    EXPECT_FALSE(says("nicht mehr in der Liste"));
}

TEST_F(SettingsWindowTest, playsTheSoundThatIsChosen) {
    home.write("sounds/bell.oga", "");
    begin({});
    settings.set(Settings::waitingSound, "gone");
    open("sounds");
    EXPECT_EQ(control<QComboBox>("Eine Sitzung fragt dich etwas").currentText(),
              "gone (nicht installiert)");
    auto& play = control<QToolButton>("Anhören: Eine Sitzung ist fertig");
    EXPECT_FALSE(play.isEnabled());
    choose(control<QComboBox>("Eine Sitzung ist fertig"), "bell");
    play.click();
    EXPECT_EQ(players.started, std::vector{home.at("sounds/bell.oga")});
}

TEST_F(SettingsWindowTest, namesAccounts) {
    settings.set(Settings::accountNames, Json{{"old", "Früher"}});
    nextUsage.accounts = {{.org = "a", .titel = "Dieses Konto"},
                          {.org = "b", .rang = 1, .titel = "Weiteres Konto 1"}};
    begin({});
    open("accounts");
    auto& other = control<QLineEdit>("Weiteres Konto 1");
    QTest::keyClicks(&other, " Firma ");
    QTest::keyClick(&other, Qt::Key_Return);
    auto& gone = control<QLineEdit>("Ohne neue Messwerte");
    EXPECT_EQ(gone.text(), "Früher");
    gone.setFocus();
    gone.clear();
    window.close();
    EXPECT_EQ(settings.get(Settings::accountNames), (Json{{"b", "Firma"}}));
}

TEST_F(SettingsWindowTest, installsAndRemovesTheHookOnlyAfterASecondYes) {
    begin({});
    open("hooks");
    EXPECT_TRUE(says("Nicht eingerichtet"));
    control<QPushButton>("Hook einrichten …").click();
    finishAll();
    EXPECT_TRUE(says("Geschrieben wird"));
    EXPECT_EQ(monitor.hookState(), FleetMonitor::HookState::missing);
    control<QPushButton>("Einrichten").click();
    finishAll();
    EXPECT_TRUE(says("Eingerichtet"));
    backups = {home.at("state/settings-backup.json")};
    control<QPushButton>("Hook entfernen …").click();
    control<QPushButton>("Abbrechen").click();
    finishAll();
    EXPECT_EQ(monitor.hookState(), FleetMonitor::HookState::installed);
    control<QPushButton>("Hook entfernen …").click();
    control<QPushButton>("Entfernen").click();
    finishAll();
    EXPECT_TRUE(says("Nicht eingerichtet"));
    control<QToolButton>("Pfad kopieren: " + QString::fromStdString(backups.front())).click();
    EXPECT_EQ(QGuiApplication::clipboard()->text().toStdString(), backups.front());
}

TEST_F(SettingsWindowTest, tellsOfAHookThatCouldNotBeRenewed) {
    ASSERT_TRUE(HookInstaller::install(monitor.hookPlaces(), start));
    std::filesystem::remove(*monitor.hookPlaces().bundledHook);
    begin({});
    open("hooks");
    EXPECT_TRUE(says("Veraltet"));
    home.write("bundled-hook", "a newer hook");
    control<QPushButton>("Hook einrichten …").click();
    control<QPushButton>("Einrichten").click();
    finishAll();
    EXPECT_TRUE(says("Eingerichtet"));
}

TEST_F(SettingsWindowTest, copiesWhatItIs) {
    begin({});
    open("about");
    EXPECT_TRUE(says("Version 1.2"));
    control<QPushButton>("Angaben kopieren").click();
    EXPECT_TRUE(QGuiApplication::clipboard()->text().contains("~/.claude\tSitzungen"));
}

}  // namespace
}  // namespace fleetwise::testing
