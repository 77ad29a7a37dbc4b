// What the menu of a session does, and how a notification leads to its row.

#include "ui/fleet/session_menu.h"

#include "monitor/virtual_fleet.h"
#include "ui/fleet/fleet_list_model.h"
#include "ui/fleet/fleet_view.h"
#include "ui/fleet/fleet_window.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QLineEdit>
#include <QMenu>
#include <QTest>
#include <gtest/gtest.h>

namespace fleetwise::testing {
namespace {

class SessionMenuTest : public ::testing::Test, protected VirtualFleet {
protected:
    SessionMenuTest() {
        Session foreign = session("x", SessionState::dormant);
        foreign.agent = SessionAgent("aider");
        begin({session("a", SessionState::decision), session("z", SessionState::dormant), foreign});
        window.bringUp();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&window));
    }

    /// Opens the session's menu and chooses by the texts on the way; whether that was possible.
    bool choose(const char* id, std::initializer_list<const char*> path, int which = 0) {
        showSessionMenu(monitor, id, &window, {});
        const auto menus = window.findChildren<QMenu*>(Qt::FindDirectChildrenOnly);
        QMenu* const opened = menus.back();
        QMenu* menu = opened;
        QAction* chosen = nullptr;
        for (const char* text : path) {
            if (chosen != nullptr) menu = chosen->menu();
            chosen = actionOf(*menu, text, text == *(path.end() - 1) ? which : 0);
            if (chosen == nullptr) return false;
        }
        const bool isPossible = chosen->isEnabled();
        chosen->trigger();
        opened->close();
        return isPossible;
    }
    static QAction* actionOf(const QMenu& menu, const QString& text, int which) {
        for (QAction* action : menu.actions()) {
            if (!action->isSeparator() && action->text() == text && which-- == 0) return action;
        }
        return nullptr;
    }

    FleetListModel model{monitor, [this] { return monitor.groups(); }};
    FleetWindow window{monitor, model};
};

TEST_F(SessionMenuTest, offersWhatCanBeDone) {
    EXPECT_TRUE(choose("a", {"Fenster nach vorn"}));
    EXPECT_FALSE(choose("a", {"Fortsetzen"})) << "it runs";
    EXPECT_FALSE(choose("z", {"Fenster nach vorn"})) << "it has ended";
    EXPECT_TRUE(choose("z", {"Fortsetzen"}));
    EXPECT_EQ(commands, (std::vector<std::string>{"focus a", "resume z"}));
    EXPECT_TRUE(choose("z", {"Befehl zum Fortsetzen kopieren"}));
    EXPECT_EQ(QGuiApplication::clipboard()->text(), "claude --resume z");
    EXPECT_TRUE(choose("x", {"Befehl zum Fortsetzen kopieren"}));
    EXPECT_EQ(QGuiApplication::clipboard()->text(), "claude --resume z");
    EXPECT_EQ(monitor.notice("x"), "geht nicht");
}

TEST_F(SessionMenuTest, silencesSessionsAndProjects) {
    const auto stored = [this] { return defaults.dictionary("sessionNotifyOverrides"); };
    const auto isMarked = [this] {
        return model.row(model.indexOf("a")).badges.contains(QStringLiteral("stumm"));
    };
    EXPECT_TRUE(choose("a", {"Mitteilungen", "Stumm"}));
    EXPECT_EQ(stored(), (Json{{"s:a", false}}));
    EXPECT_TRUE(isMarked());
    EXPECT_TRUE(choose("a", {"Mitteilungen", "Wie das Projekt"}));
    EXPECT_FALSE(isMarked());
    EXPECT_TRUE(choose("a", {"Mitteilungen", "Stumm"}, 1));
    EXPECT_EQ(stored(), (Json{{"p:/srv/a", false}}));
    EXPECT_TRUE(isMarked());
    EXPECT_TRUE(choose("a", {"Nicht mehr stumm"}));
    EXPECT_EQ(stored(), (Json{{"p:/srv/a", false}, {"s:a", true}}));
    auto& view = *window.findChild<FleetView*>();
    view.select("a");
    QTest::keyClick(&view, Qt::Key_M);
    EXPECT_EQ(stored(), (Json{{"p:/srv/a", false}}));
}

TEST_F(SessionMenuTest, offersWhatCanBeDoneWithSeveral) {
    const auto copied = [this](const char* action) {
        showSelectionMenu(monitor, {"a", "z", "x"}, &window, {});
        QMenu* menu = window.findChildren<QMenu*>(Qt::FindDirectChildrenOnly).back();
        EXPECT_EQ(menu->actions().at(0)->text(), "3 Sitzungen");
        actionOf(*menu, action, 0)->trigger();
        menu->close();
        return QGuiApplication::clipboard()->text();
    };
    EXPECT_EQ(copied("Pfade kopieren"), "/srv/a\n/srv/z\n/srv/x");
    EXPECT_EQ(copied("Sitzungs-IDs kopieren"), "a\nz\nx");
    EXPECT_EQ(copied("Befehle zum Fortsetzen kopieren"), "claude --resume a\nclaude --resume z");
    copied("Anheften");
    EXPECT_EQ(settings.get(Settings::favoriteSessionIds), (Settings::Strings{"a", "z", "x"}));
    copied("Nicht mehr anheften");
    EXPECT_EQ(settings.get(Settings::favoriteSessionIds), Settings::Strings());
}

TEST_F(SessionMenuTest, aNotificationLeadsToTheRow) {
    const auto& view = *window.findChild<FleetView*>();
    model.setFolded(model.indexOf("dormant"), true);
    window.hide();
    monitor.answerNotification("z", NotificationAction::open);
    EXPECT_TRUE(window.isVisible());
    EXPECT_EQ(view.currentIndex().data(FleetListModel::keyRole).toString(), "z");
    window.findChild<QLineEdit*>()->setText("nothing is called that");
    monitor.answerNotification("a", NotificationAction::open);
    EXPECT_EQ(view.currentIndex().data(FleetListModel::keyRole).toString(), "a");
    EXPECT_EQ(monitor.search(), "");
    monitor.toggleFilter(ListFilter::dormant);
    monitor.answerNotification("a", NotificationAction::open);
    EXPECT_EQ(view.currentIndex().data(FleetListModel::keyRole).toString(), "a");
}

}  // namespace
}  // namespace fleetwise::testing
