#include "ui/fleet/fleet_list_model.h"

#include "monitor/virtual_fleet.h"
#include "ui/billed_session.h"

#include <QAbstractItemModelTester>
#include <QSignalSpy>
#include <gmock/gmock.h>

#include <random>

namespace fleetwise::testing {
namespace {

using ::testing::HasSubstr;

class FleetListModelTest : public ::testing::Test, protected VirtualFleet {
protected:
    /// "Heading: id id | Heading: id"; a folded heading has "…" in place of its sessions.
    std::string shape() const {
        std::string text;
        for (int position = 0; position < model.rowCount(); ++position) {
            const SessionRow& row = model.row(model.index(position));
            if (row.kind == SessionRow::Kind::session) {
                text += " " + row.key.toStdString();
            } else {
                text += (text.empty() ? "" : " | ") + row.name.toStdString() + ":";
                if (row.isFolded) text += " …";
            }
        }
        return text;
    }

    FleetListModel model{monitor, [this] { return monitor.groups(); }};
    // Fails the test on any signal that does not fit the rows.
    QAbstractItemModelTester tester{&model, QAbstractItemModelTester::FailureReportingMode::Fatal};
};

TEST_F(FleetListModelTest, followsTheFleetWithoutAReset) {
    const QSignalSpy resets(&model, &QAbstractItemModel::modelReset);
    begin({session("a", SessionState::working), session("b", SessionState::working)});
    EXPECT_EQ(shape(), "Arbeitet: a b");
    const QPersistentModelIndex kept = model.indexOf("b");
    collect({session("b", SessionState::done), session("c", SessionState::working),
             session("a", SessionState::working)});
    EXPECT_EQ(shape(), "Antwort bereit: b | Arbeitet: a c");
    EXPECT_EQ(kept.data(FleetListModel::keyRole).toString(), "b") << "the selection follows it";
    collect({session("c", SessionState::working)});
    EXPECT_EQ(shape(), "Arbeitet: c");
    collect({});
    EXPECT_EQ(shape(), "");
    EXPECT_TRUE(resets.isEmpty());
}

TEST_F(FleetListModelTest, holdsThroughRandomFleets) {
    begin({});
    std::mt19937 random(7);  // NOLINT(cert-msc51-cpp): the same fleets in every run
    for (int round = 0; round < 200; ++round) {
        std::vector<Session> sessions;
        for (int id = 0; id < 12; ++id) {
            if (random() % 3 == 0) continue;
            sessions.push_back(
                session(std::to_string(id), allSessionStates[random() % allSessionStates.size()]));
        }
        std::sort(sessions.begin(), sessions.end(), Session::precedes);
        std::string expected;
        std::optional<SessionState> last;
        for (const Session& each : sessions) {
            if (each.state != last) {
                expected += (expected.empty() ? "" : " | ") + label(each.state) + ":";
            }
            last = each.state;
            expected += " " + each.id;
        }
        collect(sessions);
        ASSERT_EQ(shape(), expected) << round;
    }
}

TEST_F(FleetListModelTest, foldsGroups) {
    settings.set(Settings::summarizeSelfDriven, true);
    Session driven = session("b", SessionState::working);
    driven.stats.emplace();
    driven.stats->lastTurnOrigin = "task-notification";
    begin({session("a", SessionState::working), driven});
    EXPECT_EQ(shape(), "Arbeitet: a | Selbstgesteuerte Sitzungen: …");
    model.toggleFolded(model.indexOf("@selfDriven"));
    model.setFolded(model.indexOf("working"), true);
    EXPECT_EQ(shape(), "Arbeitet: … | Selbstgesteuerte Sitzungen: b");
    collect({session("a", SessionState::working), session("c", SessionState::working)});
    EXPECT_EQ(shape(), "Arbeitet: …") << "what the user folded stays folded";
}

TEST_F(FleetListModelTest, tellsOnlyTheTimesThatMoved) {
    Session working = session("a", SessionState::working);
    working.stateSince = start;
    Session ended = session("z", SessionState::dormant);
    ended.lastActivityAt = start;
    begin({working, ended});
    monitor.setVisibility([] { return true; });
    const QSignalSpy changes(&model, &QAbstractItemModel::dataChanged);
    loop.advance(Seconds(3));
    EXPECT_EQ(changes.size(), 3);
    EXPECT_EQ(model.row(model.indexOf("a")).elapsed, "3 s");
    for (int round = 0; round < 13; ++round) {
        finishAll();
        loop.advance(Seconds(5));
    }
    EXPECT_EQ(model.row(model.indexOf("z")).elapsed, "1 min");
}

TEST_F(FleetListModelTest, keepsTimesMovingWhilePassesBringNothingNew) {
    Session working = session("a", SessionState::working);
    working.stateSince = start - Seconds(170);
    begin({working});
    monitor.setVisibility([] { return true; });
    for (int second = 0; second < 15; ++second) {
        loop.advance(Seconds(1));
        finishAll();
    }
    EXPECT_EQ(model.row(model.indexOf("a")).elapsed, "3 min");
}

TEST_F(FleetListModelTest, tellsARowInWords) {
    Session asked = session("a", SessionState::decision);
    asked.title = "Rename billing";
    asked.lastMessage = "Which colour?";
    asked.gitBranch = "main";
    asked.hostApp = "kitty";
    asked.model = "claude-opus-5-5-20260801";
    asked.isFavorite = true;
    settings.set(Settings::favoriteSessionIds, {"a"});
    begin({asked});
    const QModelIndex index = model.indexOf("a");
    EXPECT_EQ(
        index.data(Qt::AccessibleTextRole).toString(),
        "Rename billing, Entscheidung nötig, Which colour?, a, main, kitty, Opus 5.5, Favorit");
    EXPECT_EQ(model.row(index).model, "Opus 5.5");
    commandOutcome = tl::unexpected(std::string("Kein Fenster"));
    monitor.focus("a");
    EXPECT_EQ(model.row(model.indexOf("a")).detail, "Kein Fenster");
}

TEST_F(FleetListModelTest, tellsCostsWhereTheUserWantsThem) {
    writeBilledSession(home, "a", 4.9);
    writeBilledSession(home, "b", 5);
    begin({session("a", SessionState::working), session("b", SessionState::working)});
    const auto shownCosts = [this] {
        return model.row(model.indexOf("a")).cost + "|" + model.row(model.indexOf("working")).cost;
    };
    const auto tooltip = [this](const char* key) {
        return model.indexOf(key).data(Qt::ToolTipRole).toString().toStdString();
    };
    EXPECT_EQ(shownCosts(), "4,90 $|9,90 $");
    EXPECT_THAT(tooltip("a"), HasSubstr("Abgerechnet: 4,90 $\nAPI-Preis: 5,00 $"));
    EXPECT_THAT(tooltip("working"), HasSubstr("Abgerechnet: 9,90 $"));
    EXPECT_THAT(model.indexOf("a").data(Qt::AccessibleTextRole).toString().toStdString(),
                HasSubstr("Kosten 4,90 $"));
    monitor.change(Settings::moneyBasis, "api");
    EXPECT_EQ(shownCosts(), "5,00 $|10,00 $");
    monitor.change(Settings::costDisplay, "total");
    EXPECT_EQ(shownCosts(), "|10,00 $");
    monitor.setPriceBook(Prices::flatBook(1));
    EXPECT_EQ(shownCosts(), "|2,00 $");
    monitor.change(Settings::costDisplay, "off");
    EXPECT_EQ(shownCosts(), "|");
    EXPECT_EQ(tooltip("working"), "");
}

}  // namespace
}  // namespace fleetwise::testing
