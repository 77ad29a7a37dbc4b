// The details beside the list: what they show of one session and of several, and when they read.

#include "localisation/localisation.h"
#include "monitor/virtual_fleet.h"
#include "ui/billed_session.h"
#include "ui/details/detail_list.h"
#include "ui/details/detail_rows.h"
#include "ui/details/details_pane.h"
#include "ui/details/details_section.h"
#include "ui/details/timeline_bar.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QLabel>
#include <QPushButton>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTest>
#include <QTextEdit>
#include <QToolButton>
#include <gtest/gtest.h>

#include <algorithm>

namespace fleetwise::testing {
namespace {

class DetailsTest : public ::testing::Test, protected VirtualFleet {
protected:
    DetailsTest() {
        monitor.setVisibility([] { return true; });
        nextDetails.message = "Ready.";
        nextDetails.prompt = "Do it";
        nextDetails.tasks = {{"One", TaskListStore::Status::completed},
                             {"Two", TaskListStore::Status::pending}};
        writeBilledSession(home, "a", 4.9);
        begin({session("a", SessionState::working), session("b", SessionState::working),
               session("z", SessionState::dormant)});
        pane.resize(320, 600);
        pane.show();
    }

    void choose(std::vector<std::string> ids) {
        pane.setSessions(std::move(ids));
        finishAll();
    }
    /// The titles of the sections that can be seen, in order.
    QStringList sections() const {
        QStringList titles;
        for (const auto* section : pane.findChildren<DetailsSection*>()) {
            if (section->isVisible()) titles << section->accessibleName();
        }
        return titles;
    }
    /// What can be read in rows: "text|figure".
    QStringList rows() const {
        QStringList texts;
        for (const auto* list : pane.findChildren<DetailList*>()) {
            if (!list->isVisible()) continue;
            for (const DetailRow& row : list->rows())
                texts << row.text + u'|' + row.figure;
        }
        return texts;
    }
    template <typename Button>
    Button* button(const QString& text) {
        for (auto* each : pane.findChildren<Button*>()) {
            if (each->isVisible() && (each->text() == text || each->accessibleName() == text))
                return each;
        }
        return nullptr;
    }

    DetailsPane pane{monitor};
};

TEST_F(DetailsTest, showsWhatThereIsOfASession) {
    Session working = session("a", SessionState::working);
    working.stats.emplace();
    working.stats->contextTokens = 50'000;
    working.subagentCount = 1;
    working.backgroundTasks = {{.id = "1", .command = "make", .startedAt = start}};
    collect({working});
    nextDetails.subagents = {{.kind = "Explore", .description = "Look", .lastActivityAt = start},
                             {.kind = "Explore", .description = "See", .lastActivityAt = start}};
    choose({"a"});
    EXPECT_EQ(sections(), (QStringList{"Letzte Nachricht", "Prompt", "Aufgaben", "Hintergrund",
                                       "Unteragenten", "Statistik", "Tokens und Kosten", "Pfade"}));
    const QStringList shownRows = rows();
    for (const char* row : {"One|", "make|0 s", "Look|vor 0 s", "Kontext|25 %", "Summe|4,90 $"})
        EXPECT_TRUE(shownRows.contains(row)) << row << " in " << shownRows.join(", ").toStdString();
    EXPECT_EQ(pane.findChild<QTextEdit*>()->toPlainText(), "Ready.");

    button<QToolButton>("Befehl zum Fortsetzen kopieren")->click();
    EXPECT_EQ(QGuiApplication::clipboard()->text(), "claude --resume a");
    button<QPushButton>("Fenster nach vorn")->click();
    EXPECT_EQ(commands, std::vector<std::string>{"focus a"});
    monitor.setOwnGoal("a", {.objective = "Halve it", .tokenBudget = 2'000'000});
    EXPECT_TRUE(sections().contains("Ziel"));
    const QSignalSpy edited(&pane, &DetailsPane::goalWanted);
    button<QToolButton>("Ziel ändern")->click();
    EXPECT_EQ(edited.size(), 1);

    collect({});
    EXPECT_EQ(sections(), QStringList()) << "it is gone";
}

TEST_F(DetailsTest, readsOnlyWhatIsLookedAt) {
    choose({"a"});
    const auto bring = [this](const char* message, Seconds later) {
        loop.advance(later);
        nextDetails.message = message;
        Session working = session("a", SessionState::working);
        working.lastActivityAt = loop.now();
        collect({working, session("b", SessionState::working)});
        return pane.findChild<QTextEdit*>()->toPlainText();
    };
    EXPECT_EQ(bring("One", Seconds(5)), "One");
    EXPECT_EQ(bring("Two", Seconds(0.5)), "One") << "a second has not passed";
    loop.advance(Seconds(6));
    finishAll();
    EXPECT_EQ(pane.findChild<QTextEdit*>()->toPlainText(), "Two") << "and then it is made up for";
    pane.hide();
    EXPECT_EQ(bring("Three", Seconds(5)), "Two") << "nobody looks";
    pane.show();
    finishAll();
    EXPECT_EQ(pane.findChild<QTextEdit*>()->toPlainText(), "Three");
}

TEST_F(DetailsTest, staysWhereTheUserHasScrolledTo) {
    nextDetails.prompt = std::string(3000, 'x');
    for (int task = 0; task < 30; ++task)
        nextDetails.tasks.push_back({"Task", TaskListStore::Status::pending});
    pane.resize(300, 200);
    choose({"a"});
    QTest::qWait(0);
    pane.verticalScrollBar()->setValue(100);
    ASSERT_EQ(pane.verticalScrollBar()->value(), 100);
    Session done = session("a", SessionState::done);
    collect({done, session("b", SessionState::working)});
    EXPECT_EQ(pane.verticalScrollBar()->value(), 100);
    choose({"b"});
    EXPECT_EQ(pane.verticalScrollBar()->value(), 0);
    EXPECT_LE(pane.widget()->minimumSizeHint().width(), 300) << "a long word breaks";
}

TEST_F(DetailsTest, actsOnSeveralAtOnce) {
    choose({"a", "b", "z"});
    EXPECT_EQ(rows(), (QStringList{"Arbeitet|2", "Ruhend|1", "Summe|4,90 $"}));
    button<QPushButton>("Anheften")->click();
    EXPECT_EQ(settings.get(Settings::favoriteSessionIds), (Settings::Strings{"a", "b", "z"}));
    button<QPushButton>("Stumm schalten")->click();
    EXPECT_EQ(defaults.dictionary("sessionNotifyOverrides"),
              (Json{{"s:a", false}, {"s:b", false}, {"s:z", false}}));
    button<QPushButton>("Aus der Liste entfernen")->click();
    EXPECT_EQ(settings.get(Settings::dismissedSessionIds), Settings::Strings{"z"});
    EXPECT_TRUE(monitor.notice("a")) << "it runs and stays";
}

TEST_F(DetailsTest, tellsTheCourseInWords) {
    loop.advance(Seconds(120));
    Session done = session("a", SessionState::done);
    done.stateSince = loop.now();
    collect({done});
    loop.advance(Seconds(60));
    finishAll();
    choose({"a"});
    EXPECT_TRUE(sections().contains("Verlauf"));
    EXPECT_TRUE(rows().contains("Arbeitet|2 min")) << rows().join(", ").toStdString();
    auto& bar = *pane.findChild<TimelineBar*>();
    bar.setFocus();
    QTest::keyClick(&bar, Qt::Key_Home);
    EXPECT_TRUE(bar.accessibleDescription().startsWith("Arbeitet, "))
        << bar.accessibleDescription().toStdString();
    QTest::keyClick(&bar, Qt::Key_Right);
    EXPECT_TRUE(bar.accessibleDescription().startsWith("Antwort bereit, "));
}

}  // namespace
}  // namespace fleetwise::testing
