// The main window as its user meets it: keys, search, filters and the offer of the hook.

#include "ui/fleet/fleet_window.h"

#include "monitor/virtual_fleet.h"
#include "ui/base/chip_button.h"
#include "ui/billed_session.h"
#include "ui/fleet/cost_footer.h"
#include "ui/fleet/filter_bar.h"
#include "ui/fleet/fleet_list_model.h"
#include "ui/fleet/fleet_view.h"
#include "ui/fleet/hook_banner.h"
#include "ui/fleet/view_menu.h"
#include "ui/made_up_usage.h"
#include "ui/quota/quota_strip.h"

#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

namespace fleetwise::testing {
namespace {

class FleetWindowTest : public ::testing::Test, protected VirtualFleet {
protected:
    FleetWindowTest() {
        begin({session("a", SessionState::decision), session("b", SessionState::working),
               session("z", SessionState::dormant)});
        window.bringUp();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&window));
    }

    FleetView& view() { return *window.findChild<FleetView*>(); }
    void select(const char* id) { view().setCurrentIndex(model.indexOf(id)); }
    void press(Qt::Key key) { QTest::keyClick(&view(), key); }
    bool says(const std::string& text) const {
        const auto labels = window.findChildren<QLabel*>();
        return std::any_of(labels.begin(), labels.end(), [&](const QLabel* label) {
            return label->isVisible() &&
                   label->text().toStdString().find(text) != std::string::npos;
        });
    }
    QPushButton& button(const QString& text) {
        for (QPushButton* each : window.findChildren<QPushButton*>()) {
            if (each->text() == text) return *each;
        }
        throw std::runtime_error("no button " + text.toStdString());
    }

    FleetListModel model{monitor, [this] { return monitor.groups(); }};
    FleetWindow window{monitor, model};
};

TEST_F(FleetWindowTest, isWorkedByKeys) {
    EXPECT_TRUE(view().hasFocus());
    select("a");
    press(Qt::Key_Return);
    select("z");
    press(Qt::Key_Return);
    EXPECT_EQ(commands, (std::vector<std::string>{"focus a", "resume z"}));
    press(Qt::Key_F);
    EXPECT_EQ(settings.get(Settings::favoriteSessionIds), std::vector<std::string>{"z"});
    press(Qt::Key_Delete);
    EXPECT_EQ(settings.get(Settings::dismissedSessionIds), std::vector<std::string>{"z"});

    select("decision");
    press(Qt::Key_Left);
    EXPECT_FALSE(model.indexOf("a").isValid());
    press(Qt::Key_Right);
    press(Qt::Key_Down);
    EXPECT_EQ(view().currentIndex(), model.indexOf("a"));
}

TEST(EmptyFleetWindow, tellsANewUserWhatToDo) {
    VirtualFleet fleet;
    FleetListModel model(fleet.monitor, [&] { return fleet.monitor.groups(); });
    const FleetWindow window(fleet.monitor, model);
    const auto says = [&](const QString& text) {
        for (const QLabel* label : window.findChildren<QLabel*>()) {
            if (label->text().contains(text)) return true;
        }
        return false;
    };
    EXPECT_TRUE(says("werden gesucht"));
    fleet.begin({});
    EXPECT_TRUE(says("Noch keine Sitzung"));
}

TEST_F(FleetWindowTest, searchesAndFilters) {
    auto& search = *window.findChild<QLineEdit*>();
    QTest::keyClick(&window, Qt::Key_F, Qt::ControlModifier);
    EXPECT_TRUE(search.hasFocus());
    QTest::keyClicks(&search, "entscheidung");
    EXPECT_TRUE(model.indexOf("a").isValid());
    EXPECT_FALSE(model.indexOf("b").isValid());
    QTest::keyClick(&search, Qt::Key_Down);
    EXPECT_TRUE(view().hasFocus());
    EXPECT_EQ(view().currentIndex(), model.indexOf("a"));
    QTest::keyClick(&search, Qt::Key_Escape);
    EXPECT_TRUE(model.indexOf("b").isValid());

    for (ChipButton* filter : window.findChildren<ChipButton*>()) {
        if (filter->text() == "Arbeitet") filter->click();
    }
    EXPECT_EQ(settings.get(Settings::activeFilters), std::vector<std::string>{"working"});
    EXPECT_FALSE(model.indexOf("a").isValid());
    EXPECT_TRUE(model.indexOf("b").isValid());
}

TEST_F(FleetWindowTest, bringsRemovedSessionsBack) {
    select("z");
    press(Qt::Key_Delete);
    EXPECT_FALSE(model.indexOf("z").isValid());
    auto& menu = *window.findChild<FilterBar*>()->findChild<QMenu*>();
    emit menu.aboutToShow();
    const auto actions = menu.actions();
    const auto action = std::find_if(actions.begin(), actions.end(), [](const QAction* each) {
        return each->text().startsWith("Entfernte");
    });
    ASSERT_NE(action, actions.end());
    (*action)->trigger();
    finishAll();
    EXPECT_TRUE(model.indexOf("z").isValid());
}

TEST_F(FleetWindowTest, showsTheQuotaWhileItCanBeSeen) {
    auto& strip = *window.findChild<QuotaStrip*>();
    EXPECT_EQ(strip.heightForWidth(800), 0);
    EXPECT_EQ(strip.focusPolicy(), Qt::NoFocus);
    const auto bring = [this](int percent) {
        nextUsage = usageOfOneAccount(loop.now());
        nextUsage.fiveHour->percent = percent;
        monitor.refresh();
        finishAll();
    };
    bring(42);
    EXPECT_TRUE(strip.accessibleName().contains("5 h 42 %"))
        << strip.accessibleName().toStdString();
    EXPECT_GT(strip.heightForWidth(800), 0);
    window.hide();
    bring(50);
    EXPECT_TRUE(strip.accessibleName().contains("5 h 42 %")) << "no work while it is hidden";
    window.bringUp();
    EXPECT_TRUE(strip.accessibleName().contains("5 h 50 %"));

    const QSignalSpy wanted(&window, &FleetWindow::usageWanted);
    strip.click();
    auto& menu = *window.findChild<FilterBar*>()->findChild<QMenu*>();
    emit menu.aboutToShow();
    menu.actions().at(0)->trigger();
    EXPECT_TRUE(QTest::qWaitForWindowActive(&window));
    QTest::keyClick(&window, Qt::Key_U, Qt::ControlModifier);
    EXPECT_EQ(wanted.size(), 3);

    monitor.change(Settings::usageShowsQuota, false);
    EXPECT_EQ(strip.heightForWidth(800), 0);
}

TEST(FleetWindowFooter, tellsWhatTheListedSessionsCost) {
    VirtualFleet fleet;
    writeBilledSession(fleet.home, "a", 5);
    writeBilledSession(fleet.home, "z", 6);
    fleet.begin({session("a", SessionState::working), session("z", SessionState::dormant)});
    const CostFooter footer(fleet.monitor);
    EXPECT_EQ(footer.text(),
              "Summe 11,00 $ · 2.000.000 Tokens · "
              "Eingebaute Preisliste, Stand 27.08.2026 · wohl veraltet");
    EXPECT_TRUE(footer.toolTip().contains("Abgerechnet: 11,00 $\n"));
    EXPECT_TRUE(footer.toolTip().contains("rechnen 10 % mehr ab"));
    fleet.monitor.toggleFilter(ListFilter::working);
    EXPECT_TRUE(footer.text().startsWith("Summe 5,00 $"));

    // The choices of the view menu reach it.
    QWidget window;
    QMenu& menu = *makeViewMenu(
        fleet.monitor, [] {}, &window);
    const auto choose = [&](const QString& text) {
        emit menu.aboutToShow();
        for (QAction* action : menu.findChildren<QAction*>()) {
            if (action->text() == text) action->trigger();
        }
    };
    choose("Ohne Cache");
    EXPECT_EQ(fleet.settings.get(Settings::moneyBasis), "uncached");
    choose("Aus");
    EXPECT_EQ(footer.text(), "");
}

TEST_F(FleetWindowTest, installsTheHookAfterASecondYes) {
    auto& banner = *window.findChild<HookBanner*>();
    ASSERT_TRUE(banner.isVisible());
    button("Hook einrichten …").click();
    finishAll();
    EXPECT_FALSE(std::filesystem::exists(home.at("settings.json"))) << "asked, not yet told to";
    button("Abbrechen").click();
    button("Hook einrichten …").click();
    EXPECT_TRUE(says(home.at("settings.json"))) << "what is written is named";
    button("Einrichten").click();
    finishAll();
    EXPECT_TRUE(std::filesystem::exists(home.at("settings.json")));
    EXPECT_FALSE(banner.isVisible());
}

TEST_F(FleetWindowTest, saysWhyItIsEmptyAndStaysWithoutATray) {
    monitor.setSearch("nowhere");
    EXPECT_FALSE(view().isVisible());
    EXPECT_TRUE(says("Keine Sitzung passt"));
    window.setClosing(FleetWindow::Closing::minimises);
    window.close();
    EXPECT_TRUE(window.isMinimized());
    window.setClosing(FleetWindow::Closing::hides);
    window.close();
    EXPECT_FALSE(window.isVisible());
    EXPECT_NE(settings.get(Settings::windowGeometry), "");
    monitor.requestWindow();
    EXPECT_TRUE(window.isVisible());
}

}  // namespace
}  // namespace fleetwise::testing
