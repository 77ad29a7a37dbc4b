#include "ui/archive/archive_window.h"

#include "monitor/archive_index.h"
#include "monitor/virtual_fleet.h"
#include "ui/archive/archive_model.h"
#include "ui/archive/archive_preview.h"
#include "ui/archive/archive_view.h"
#include "ui/base/chip_button.h"
#include "ui/base/interface_text.h"
#include "ui/billed_session.h"

#include <QAbstractItemModelTester>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QGuiApplication>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <QTest>
#include <gtest/gtest.h>

#include <algorithm>

namespace fleetwise::testing {
namespace {

/// Four sessions: "day" of today, "eve" of yesterday, both in one project, and of long ago "old"
/// and Codex's "dex".
class ArchiveTest : public ::testing::Test, protected VirtualFleet {
protected:
    ArchiveTest() {
        has("day", 3600, "Rename the billing module", 3'000'000);
        has("eve", 86'400, "Ärger mit Ümlauten", 9'000'000).cwd = "/srv/day";
        has("old", 100 * 86'400.0, "", 1'000).prompt = "what was typed";
        has("dex", 300 * 86'400.0, "Fix the build", 2'000'000).agent = SessionAgent("codex");
        begin({session("live", SessionState::working), session("day", SessionState::dormant)});
    }

    ArchiveEntry& has(const std::string& id, double age, const std::string& title,
                      std::uint64_t size) {
        ArchiveEntry entry;
        entry.id = id;
        entry.lastActivityAt = start - Seconds(age);
        entry.title = title;
        entry.cwd = "/srv/" + id;
        entry.path = "/transcripts/" + id + ".jsonl";
        entry.sizeBytes = size;
        entry.isComplete = true;
        return there.emplace_back(std::move(entry));
    }
    void refresh() {
        index.refresh();
        finishAll();
    }

    std::vector<ArchiveEntry> there;
    ArchiveIndex index{loop,
                       {.list = [this](Date) { return there; },
                        .complete = [](std::vector<ArchiveEntry> portion) { return portion; }}};
};

class ArchiveModelTest : public ArchiveTest {
protected:
    ArchiveModelTest() { refresh(); }

    std::string found(const char* query) {
        model.setSearch(QString::fromUtf8(query));
        return joined();
    }
    std::string joined() const {
        std::string ids;
        for (const std::string& id : model.ids())
            ids += (ids.empty() ? "" : " ") + id;
        return ids;
    }
    std::string cell(int row, int column) const {
        return model.index(row, column).data().toString().toStdString();
    }

    ArchiveModel model{monitor, index};
    QAbstractItemModelTester tester{&model, QAbstractItemModelTester::FailureReportingMode::Fatal};
};

TEST_F(ArchiveModelTest, findsByAllThatPeopleKnow) {
    const struct {
        const char* query;
        const char* ids;
    } rows[] = {
        {"", "day eve old dex"}, {"RENAME", "day"},       {"ümlaut ärger", "eve"},
        {"typed", "old"},        {"/srv/day", "day eve"}, {"codex", "dex"},
        {"heute", "day"},        {"gestern", "eve"},      {"21.11.2026", "day"},
        {"11.2026", "day eve"},  {"2026-11", "day eve"},  {"srv billing", "day"},
        {"srv  nowhere", ""},    {"dex", "dex"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(found(row.query), row.ids) << row.query;
    found("");
    model.setAgents(ArchiveModel::Agents::claude);
    EXPECT_EQ(joined(), "day eve old");
}

TEST_F(ArchiveModelTest, sortsByEachColumnAndFollowsTheArchive) {
    writeBilledSession(home, "old", 5);
    writeBilledSession(home, "eve", 1);
    loop.advance(FleetCosts::longestRest);
    finishAll();
    const struct {
        int column;
        Qt::SortOrder order;
        const char* ids;
    } rows[] = {
        {ArchiveModel::nameColumn, Qt::AscendingOrder, "dex day old eve"},
        {ArchiveModel::projectColumn, Qt::AscendingOrder, "day eve dex old"},
        {ArchiveModel::sizeColumn, Qt::DescendingOrder, "eve day dex old"},
        {ArchiveModel::costColumn, Qt::DescendingOrder, "old eve day dex"},
        {ArchiveModel::dateColumn, Qt::AscendingOrder, "dex old eve day"},
        {ArchiveModel::dateColumn, Qt::DescendingOrder, "day eve old dex"},
    };
    for (const auto& row : rows) {
        model.sort(row.column, row.order);
        EXPECT_EQ(joined(), row.ids) << row.column;
    }
    EXPECT_EQ(cell(0, ArchiveModel::dateColumn), "Heute 02:05");
    EXPECT_EQ(cell(1, ArchiveModel::sizeColumn), "9 MB");
    EXPECT_EQ(cell(2, ArchiveModel::nameColumn), "what was typed");
    EXPECT_EQ(cell(2, ArchiveModel::costColumn), "5,00 $");

    const QPersistentModelIndex old = model.indexOf("old");
    there.erase(there.begin() + 1);
    refresh();
    EXPECT_EQ(old.row(), 1) << "what stays keeps its row";
    there.back().lastActivityAt = start;
    refresh();
    EXPECT_EQ(joined(), "dex day old");

    loop.advance(Seconds(86'400));
    monitor.setVisibility([] { return true; });
    loop.advance(FleetMonitor::clockInterval);
    EXPECT_EQ(cell(0, ArchiveModel::dateColumn).substr(0, 7), "Gestern");
}

TEST_F(ArchiveModelTest, followsOnlyWhileActive) {
    int updates = 0;
    QObject::connect(&model, &ArchiveModel::updated, &model, [&] { ++updates; });
    model.setActive(false);
    there.erase(there.begin());
    refresh();
    EXPECT_EQ(updates, 0);
    model.setActive(true);
    EXPECT_EQ(updates, 1);
    EXPECT_EQ(joined(), "eve old dex");
}

class ArchiveWindowTest : public ArchiveTest {
protected:
    ArchiveWindowTest() {
        window.bringUp();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&window));
        finishAll();
    }

    ArchiveView& view() { return *window.findChild<ArchiveView*>(); }
    QLineEdit& search() { return *window.findChild<QLineEdit*>(); }
    std::string current() { return view().currentEntry() ? view().currentEntry()->id : ""; }
    bool says(const QString& text) const {
        const auto labels = window.findChildren<QLabel*>();
        return std::ranges::any_of(labels, [&](const QLabel* label) {
            return label->isVisible() && label->text().contains(text);
        });
    }
    std::string copied() const { return QGuiApplication::clipboard()->text().toStdString(); }
    QAction* menuAction(const QString& text) {
        QContextMenuEvent asked(QContextMenuEvent::Keyboard, {}, {});
        QCoreApplication::sendEvent(view().viewport(), &asked);
        for (QMenu* menu : view().findChildren<QMenu*>()) {
            for (QAction* action : menu->actions()) {
                if (action->text() == text) return action;
            }
        }
        return nullptr;
    }

    ArchiveWindow window{monitor, index};
};

TEST_F(ArchiveWindowTest, isWorkedByKeys) {
    EXPECT_TRUE(search().hasFocus());
    EXPECT_EQ(current(), "day");
    QTest::keyClicks(&search(), "typed");
    EXPECT_EQ(current(), "old");
    QTest::keyClick(&search(), Qt::Key_Down);
    QTest::keyClick(&view(), Qt::Key_Return);
    EXPECT_EQ(commands, std::vector<std::string>{"resume old"});
    QTest::keyClick(&view(), Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(copied(), "claude --resume old");

    commandOutcome = tl::unexpected(std::string("Der Ordner fehlt"));
    window.findChild<ArchivePreview*>()->findChild<QPushButton*>()->click();
    EXPECT_TRUE(says("Der Ordner fehlt"));

    QTest::keyClick(&window, Qt::Key_F, Qt::ControlModifier);
    EXPECT_TRUE(search().hasFocus());
    QTest::keyClick(&search(), Qt::Key_Escape);
    EXPECT_EQ(search().text(), "");
    EXPECT_EQ(current(), "old") << "stays selected";
    QTest::keyClick(&search(), Qt::Key_Escape);
    EXPECT_FALSE(window.isVisible());
    EXPECT_NE(settings.get(Settings::archiveGeometry), "");
}

TEST_F(ArchiveWindowTest, bringsARunningSessionToTheFront) {
    has("live", 10, "Running", 10);
    refresh();
    QTest::keyClicks(&search(), "running");
    QTest::keyClick(&search(), Qt::Key_Return);
    QTest::keyClick(&view(), Qt::Key_Return);
    EXPECT_EQ(commands, std::vector<std::string>{"focus live"});
    EXPECT_TRUE(view().currentIndex().data(Qt::AccessibleTextRole).toString().contains("Arbeitet"));
}

TEST_F(ArchiveWindowTest, copiesOfSeveralSessions) {
    view().setFocus();
    view().selectRow(0);
    QTest::keyClick(&view(), Qt::Key_Down, Qt::ShiftModifier);
    menuAction("Pfad kopieren")->trigger();
    EXPECT_EQ(copied(), "/srv/day\n/srv/day");
    menuAction("Sitzungs-ID kopieren")->trigger();
    EXPECT_EQ(copied(), "day\neve");
    EXPECT_FALSE(menuAction("Fortsetzen")->isEnabled());
    has("new", 1, "Newer than all", 10);
    refresh();
    menuAction("Pfad des Verlaufs kopieren")->trigger();
    EXPECT_EQ(copied(), "/transcripts/day.jsonl\n/transcripts/eve.jsonl");
}

TEST_F(ArchiveWindowTest, saysWhyItIsEmpty) {
    QTest::keyClicks(&search(), "nowhere");
    EXPECT_TRUE(says("Keine Sitzung passt"));
    search().clear();
    there.clear();
    refresh();
    EXPECT_TRUE(says("Noch keine vorigen Sitzungen"));
}

TEST_F(ArchiveTest, isReadOnlyWhileItCanBeSeen) {
    const ArchiveWindow hidden(monitor, index);
    collect({});
    EXPECT_FALSE(index.hasListed());
}

}  // namespace
}  // namespace fleetwise::testing
