// The main window as its user meets it: keys, search, filters and the offer of the hook.

#include "ui/fleet/fleet_window.h"

#include "monitor/virtual_fleet.h"
#include "ui/base/chip_button.h"
#include "ui/billed_session.h"
#include "ui/details/details_pane.h"
#include "ui/fleet/cost_footer.h"
#include "ui/fleet/filter_bar.h"
#include "ui/fleet/fleet_list_model.h"
#include "ui/fleet/fleet_view.h"
#include "ui/fleet/hook_banner.h"
#include "ui/fleet/session_row_delegate.h"
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
    void select(const char* id) { view().select(id); }
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

TEST_F(FleetWindowTest, actsOnAllThatIsSelected) {
    auto& details = *window.findChild<DetailsPane*>();
    const auto says = [&](const QString& text) {
        const auto labels = details.findChildren<QLabel*>();
        return std::ranges::any_of(labels, [&](const QLabel* label) {
            return label->isVisible() && label->text() == text;
        });
    };
    window.resize(1200, 600);
    view().selectAll();
    EXPECT_EQ(view().selectedSessions(), (std::vector<std::string>{"a", "b", "z"}))
        << "headings are no part of it";
    EXPECT_TRUE(says("3 Sitzungen"));
    press(Qt::Key_F);
    EXPECT_EQ(settings.get(Settings::favoriteSessionIds), (Settings::Strings{"a", "b", "z"}));
    press(Qt::Key_F);
    EXPECT_EQ(settings.get(Settings::favoriteSessionIds), Settings::Strings());
    press(Qt::Key_M);
    EXPECT_EQ(defaults.dictionary("sessionNotifyOverrides").size(), 3U);

    select("decision");
    EXPECT_TRUE(view().selectedSessions().empty());
    press(Qt::Key_Delete);
    EXPECT_EQ(settings.get(Settings::dismissedSessionIds), Settings::Strings());
    view().selectAll();
    QTest::mouseClick(view().viewport(), Qt::LeftButton, {},
                      view().visualRect(model.indexOf("working")).center());
    EXPECT_EQ(view().selectedSessions(), (std::vector<std::string>{"a", "z"}))
        << "folding takes out of it what is folded away, and no more";
    press(Qt::Key_Delete);
    select("z");
    press(Qt::Key_Delete);
    EXPECT_EQ(settings.get(Settings::dismissedSessionIds), Settings::Strings{"z"});
}

TEST_F(FleetWindowTest, offersButtonsUnderThePointer) {
    const auto place = [&](const char* id, RowAction action) {
        QStyleOptionViewItem option;
        option.font = view().font();
        const auto& delegate = *view().findChild<SessionRowDelegate*>();
        const RowActions places = delegate.actionsOf(option, view().visualRect(model.indexOf(id)));
        return (action == RowAction::act ? places.act : places.menu).center();
    };
    select("b");
    QTest::mouseClick(view().viewport(), Qt::LeftButton, {}, place("a", RowAction::act));
    QTest::mouseClick(view().viewport(), Qt::LeftButton, {}, place("z", RowAction::act));
    QTest::mouseDClick(view().viewport(), Qt::LeftButton, {}, place("z", RowAction::act));
    QTest::mouseRelease(view().viewport(), Qt::LeftButton, {}, place("z", RowAction::act));
    EXPECT_EQ(commands, (std::vector<std::string>{"focus a", "resume z"}));
    EXPECT_EQ(view().currentIndex(), model.indexOf("b")) << "the selection is left alone";
    QTest::mousePress(view().viewport(), Qt::LeftButton, {}, place("a", RowAction::act));
    QTest::mouseRelease(view().viewport(), Qt::LeftButton, {}, place("b", RowAction::act));
    EXPECT_EQ(commands.size(), 2U) << "let go elsewhere";
    QTest::mouseClick(view().viewport(), Qt::LeftButton, {}, place("a", RowAction::menu));
    EXPECT_NE(view().findChild<QMenu*>(), nullptr);
}

TEST_F(FleetWindowTest, hasDetailsWhereThereIsRoom) {
    auto& details = *window.findChild<DetailsPane*>();
    window.resize(1200, 600);
    EXPECT_TRUE(details.isVisible());
    QTest::keyClick(&window, Qt::Key_I, Qt::ControlModifier);
    EXPECT_FALSE(details.isVisible());
    EXPECT_FALSE(settings.get(Settings::showsDetails));
    window.resize(500, 600);
    QTest::keyClick(&window, Qt::Key_I, Qt::ControlModifier);
    EXPECT_FALSE(details.isVisible());
    EXPECT_TRUE(says("zu schmal"));
    window.resize(1200, 600);
    EXPECT_TRUE(details.isVisible());
    const QSignalSpy archive(&window, &FleetWindow::archiveWanted);
    const QSignalSpy wanted(&window, &FleetWindow::settingsWanted);
    QTest::keyClick(&window, Qt::Key_H, Qt::ControlModifier);
    QTest::keyClick(&window, Qt::Key_Comma, Qt::ControlModifier);
    EXPECT_EQ(archive.size() + wanted.size(), 2);
}

TEST_F(FleetWindowTest, fitsANarrowWindow) {
    EXPECT_LE(window.minimumSizeHint().width(), 480);
    QFont large = window.font();
    large.setPointSizeF(large.pointSizeF() * 2);
    window.setFont(large);
    EXPECT_LE(window.minimumSizeHint().width(), 480);
    monitor.toggleFilter(ListFilter::working);
    window.resize(480, 600);
    auto& bar = *window.findChild<FilterBar*>();
    const auto chips = bar.findChildren<ChipButton*>();
    EXPECT_TRUE(std::ranges::any_of(chips, [](const ChipButton* chip) {
        return chip->isVisible() && chip->text() == "Ansicht (1)";
    })) << "a filter that cannot be seen is told of";
    for (const QWidget* widget : bar.findChildren<QWidget*>()) {
        if (widget->isVisible() && widget->parentWidget() == &bar) {
            EXPECT_TRUE(bar.rect().contains(widget->geometry()));
        }
    }
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
    QMenu& menu = *makeViewMenu(fleet.monitor, {}, &window);
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
