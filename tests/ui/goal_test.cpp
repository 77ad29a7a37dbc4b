// The user's goals in the list, and the dialog that sets them.

#include "localisation/localisation.h"
#include "monitor/virtual_fleet.h"
#include "ui/fleet/fleet_list_model.h"
#include "ui/fleet/fleet_view.h"
#include "ui/fleet/goal_dialog.h"
#include "ui/fleet/session_row_delegate.h"

#include <QLabel>
#include <QLineEdit>
#include <QPainter>
#include <QPushButton>
#include <QTest>
#include <gtest/gtest.h>

#include <algorithm>

namespace fleetwise::testing {
namespace {

class GoalTest : public ::testing::Test, protected VirtualFleet {
protected:
    GoalTest() { begin({session("a", SessionState::working)}); }
    ~GoalTest() override { setInterfaceLanguage("de", {}); }

    /// Fills in the dialog and presses the button; gives the fault that is shown, if any.
    std::string fill(const std::vector<const char*>& texts, const char* button = "Sichern") {
        GoalDialog dialog(monitor, "a");
        dialog.open();
        const auto fields = dialog.findChildren<QLineEdit*>();
        for (std::size_t at = 0; at < texts.size(); ++at)
            fields.at(static_cast<qsizetype>(at))->setText(texts[at]);
        for (QPushButton* each : dialog.findChildren<QPushButton*>()) {
            if (each->text() == button) each->click();
        }
        if (!dialog.isVisible()) return {};
        const auto refused = std::ranges::find_if(fields, [](const QLineEdit* field) {
            return !field->accessibleDescription().isEmpty();
        });
        EXPECT_EQ(dialog.focusWidget(), *refused);
        return (*refused)->accessibleDescription().toStdString();
    }

    const SessionRow& row() { return model.row(model.indexOf("a")); }

    FleetListModel model{monitor, [this] { return monitor.groups(); }};
};

TEST_F(GoalTest, isSetChangedAndRemoved) {
    EXPECT_EQ(fill({" Ship it ", "200.000", "2,5", "12,25"}), "");
    auto entry = monitor.ownGoal("a");
    ASSERT_TRUE(entry);
    EXPECT_EQ(entry->objective, "Ship it");
    EXPECT_EQ(entry->tokenBudget, 200'000);
    EXPECT_EQ(entry->costLimitUSD, 2.5);
    EXPECT_EQ(entry->windowShareLimit, 12.25);
    const Date created = entry->createdAt;

    loop.advance(Seconds(60));
    EXPECT_EQ(fill({}), "") << "what it shows can be read again";
    EXPECT_EQ(monitor.ownGoal("a"), entry);
    EXPECT_EQ(fill({"Ship it", "", "3", ""}), "");
    entry = monitor.ownGoal("a");
    ASSERT_TRUE(entry);
    EXPECT_EQ(entry->tokenBudget, std::nullopt);
    EXPECT_EQ(entry->costLimitUSD, 3);
    EXPECT_EQ(entry->createdAt, created);

    EXPECT_EQ(fill({"Other"}, "Abbrechen"), "");
    EXPECT_EQ(monitor.ownGoal("a"), entry);
    EXPECT_EQ(fill({}, "Ziel entfernen"), "");
    EXPECT_EQ(monitor.ownGoal("a"), std::nullopt);
    EXPECT_EQ(fill({"x"}), "");
    EXPECT_EQ(fill({" ", "", "", ""}), "");
    EXPECT_EQ(monitor.ownGoal("a"), std::nullopt) << "nothing is no goal";
}

TEST_F(GoalTest, refusesWhatIsNoLimit) {
    const struct {
        const char* language;
        std::vector<const char*> texts;
        const char* fault;
    } rows[] = {
        {"de", {"", "viele"}, "Das lässt sich nicht als Zahl lesen. Schreibe etwa 200.000."},
        {"de", {"", "1,5"}, "Hier passt nur eine ganze Zahl."},
        {"de", {"", "0"}, "Es muss mehr als null sein."},
        {"de", {"", "1000000000000001"}, "Höchstens 1.000.000.000.000.000."},
        {"de", {"", "99999999999999999999"}, "Höchstens 1.000.000.000.000.000."},
        {"de", {"", "", "1,234"}, "Höchstens zwei Stellen hinter dem Komma."},
        {"de", {"", "", "-1"}, "Das lässt sich nicht als Zahl lesen. Schreibe etwa 2,50."},
        {"en", {"", "", "1,5"}, "Das lässt sich nicht als Zahl lesen. Schreibe etwa 2.50."},
        {"de", {"", "", "", "100,01"}, "Höchstens 100."},
        {"de", {"", "", "0", "zwei"}, "Es muss mehr als null sein."},
    };
    for (const auto& row : rows) {
        setInterfaceLanguage(row.language, {});
        EXPECT_EQ(fill(row.texts), row.fault);
        EXPECT_EQ(monitor.ownGoal("a"), std::nullopt) << row.fault;
    }
    EXPECT_EQ(fill({"", "", "", "100"}), "");
}

TEST_F(GoalTest, standsInTheRow) {
    EXPECT_EQ(row().goal, "");
    monitor.setOwnGoal("a", {.objective = "Ship it", .costLimitUSD = 5});
    finishAll();
    EXPECT_EQ(row().goal, "Ziel");
    EXPECT_EQ(row().goalShare, std::nullopt);
    EXPECT_TRUE(row().tooltip.contains("Ziel: Ship it")) << row().tooltip.toStdString();
    EXPECT_TRUE(row().tooltip.contains("Grenzen: höchstens 5,00 $"));
    EXPECT_TRUE(row().spoken.contains("Ziel Ship it"));

    auto goals = std::make_shared<GoalStore::Goals>();
    goals->emplace(
        "b", GoalStore::Goal{
                 .sessionId = "b", .objective = "Theirs", .tokenBudget = 1000, .tokensUsed = 629});
    nextUsage.codexGoals = goals;
    collect({session("a", SessionState::working), session("b", SessionState::working)});
    const SessionRow theirs = model.row(model.indexOf("b"));
    EXPECT_EQ(theirs.goal, "Ziel 62 %") << "rounded down";
    EXPECT_EQ(theirs.goalShare, 0.629);
    goals = std::make_shared<GoalStore::Goals>(*goals);
    goals->at("b").status = GoalStore::Status::complete;
    nextUsage.codexGoals = goals;
    collect({session("a", SessionState::working), session("b", SessionState::working)});
    EXPECT_EQ(model.row(model.indexOf("b")).goal, "Ziel ✓");
}

/// The goal is the last of the badges that falls away, and none of them changes the row's height.
TEST_F(GoalTest, keepsItsBadgeLongest) {
    SessionRowDelegate delegate;
    Session busy = session("a", SessionState::working);
    busy.subagentCount = 2;
    const auto painted = [&](int width) {
        QImage image(width, 60, QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::white);
        QPainter painter(&image);
        QStyleOptionViewItem option;
        option.rect =
            QRect(QPoint(), QSize(width, delegate.sizeHint(option, model.indexOf("a")).height()));
        delegate.paint(&painter, option, model.indexOf("a"));
        return image;
    };
    const auto differsByGoal = [&](Density density, int width) {
        delegate.setDensity(density);
        monitor.removeOwnGoal("a");
        const QImage without = painted(width);
        monitor.setOwnGoal("a", {.objective = "x", .tokenBudget = 1});
        return painted(width) != without;
    };
    collect({busy});
    EXPECT_TRUE(differsByGoal(Density::comfortable, 360));
    EXPECT_TRUE(differsByGoal(Density::comfortable, 1000));
    EXPECT_TRUE(differsByGoal(Density::compact, 1000));
    EXPECT_TRUE(differsByGoal(Density::compact, 640));
    EXPECT_FALSE(differsByGoal(Density::compact, 360)) << "no room, and the name is not cut for it";
}

TEST_F(GoalTest, isOpenedByItsKey) {
    FleetView view(monitor, model);
    view.show();
    view.setCurrentIndex(model.indexOf("working"));
    QTest::keyClick(&view, Qt::Key_G);
    EXPECT_EQ(view.findChild<GoalDialog*>(), nullptr) << "a heading has none";
    view.setCurrentIndex(model.indexOf("a"));
    QTest::keyClick(&view, Qt::Key_G);
    auto* dialog = view.findChild<GoalDialog*>();
    ASSERT_NE(dialog, nullptr);
    EXPECT_TRUE(dialog->isVisible());
    QTest::keyClick(dialog, Qt::Key_Escape);
    EXPECT_FALSE(dialog->isVisible());
}

}  // namespace
}  // namespace fleetwise::testing
