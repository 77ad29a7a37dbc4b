// The usage window as its user meets it: what it says without data, and that it follows the monitor
// while it can be seen.

#include "ui/usage/usage_window.h"

#include "monitor/virtual_fleet.h"
#include "ui/base/chip_button.h"
#include "ui/billed_session.h"
#include "ui/charts/day_bars.h"
#include "ui/charts/rank_bars.h"
#include "ui/charts/time_chart.h"
#include "ui/made_up_usage.h"
#include "ui/usage/session_usage_model.h"

#include <QAbstractItemModelTester>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QTableView>
#include <QTest>
#include <QTextDocument>
#include <gtest/gtest.h>

#include <algorithm>

namespace fleetwise::testing {
namespace {

class UsageWindowTest : public ::testing::Test, protected VirtualFleet {
protected:
    void open() {
        window.bringUp();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&window));
    }
    void turnTo(Qt::Key key) { QTest::keyClick(&window, key, Qt::ControlModifier); }
    bool says(const QString& text) const {
        const auto labels = window.findChildren<QLabel*>();
        return std::ranges::any_of(labels, [&](const QLabel* label) {
            QString words = label->text();
            return label->isVisible() && words.replace(QChar::Nbsp, u' ').contains(text);
        });
    }
    template <typename Widget>
    int visibleCount() const {
        const auto all = window.findChildren<Widget*>();
        return static_cast<int>(std::ranges::count_if(all, &QWidget::isVisible));
    }
    ChipButton& chip(const QString& text) {
        const auto chips = window.findChildren<ChipButton*>();
        const auto found = std::ranges::find_if(chips, [&](const ChipButton* each) {
            return each->text() == text && (each->isVisible() || !window.isVisible());
        });
        if (found == chips.end()) throw std::runtime_error("no chip " + text.toStdString());
        return **found;
    }
    /// Both accounts measured once an hour over the last day, with this percentage at last.
    UsageOverview measured(int percent, const std::vector<std::string>& orgs = {}) {
        UsageOverview usage = usageOfOneAccount(loop.now());
        usage.fiveHour->percent = percent;
        UsageSamples samples;
        for (int hour = 23; hour >= 0; --hour) {
            UsageSample sample{
                .date = loop.now() - Seconds(3'600 * hour), .fiveHour = percent, .sevenDay = 17};
            for (const std::string& org : orgs) {
                sample.org = org;
                samples.push_back(sample);
            }
            if (orgs.empty()) samples.push_back(sample);
        }
        usage.samples = std::make_shared<const UsageSamples>(std::move(samples));
        for (const std::string& org : orgs) {
            usage.accounts.push_back({.org = org, .titel = "Konto " + org});
            usage.accounts.back().fuenfStunden =
                quotaWindow(org == "a" ? 11 : 77, Seconds(6'600), loop.now());
        }
        return usage;
    }
    void bring(UsageOverview usage) {
        nextUsage = std::move(usage);
        collect(next.sessions);
    }

    static ArchiveEntry entry(const std::string& id, const std::string& title,
                              const std::string& cwd) {
        ArchiveEntry made;
        made.id = id;
        made.title = title;
        made.cwd = cwd;
        made.isComplete = true;
        return made;
    }

    std::vector<ArchiveEntry> past;
    ArchiveIndex archive{loop,
                         {.list = [this](Date) { return past; },
                          .complete = [](std::vector<ArchiveEntry> portion) { return portion; }}};
    UsageWindow window{monitor, archive};
};

TEST_F(UsageWindowTest, tellsWhatWillAppearWhereThereIsNothing) {
    begin({});
    open();
    EXPECT_TRUE(says("plan-usage-history.json"));
    EXPECT_EQ(visibleCount<TimeChart>(), 0);
    for (const Qt::Key page : {Qt::Key_2, Qt::Key_3}) {
        turnTo(page);
        EXPECT_TRUE(says("nichts verbraucht"));
    }
    turnTo(Qt::Key_4);
    EXPECT_TRUE(says("werden gelesen"));
    finishAll();
    EXPECT_TRUE(says("nichts verbraucht"));
    turnTo(Qt::Key_5);
    EXPECT_TRUE(says("hat keine Sitzung etwas verbraucht"));
    turnTo(Qt::Key_6);
    EXPECT_TRUE(says("hat keine Sitzung auf dich gewartet"));
    EXPECT_EQ(visibleCount<ChartWidget>(), 0);
}

TEST_F(UsageWindowTest, followsTheQuotaOnlyWhileItCanBeSeen) {
    nextUsage = measured(42);
    begin({});
    EXPECT_FALSE(says("42 %"));
    open();
    EXPECT_TRUE(says("5 h 42 %"));
    EXPECT_EQ(visibleCount<TimeChart>(), 2);
    bring(measured(55));
    EXPECT_TRUE(says("5 h 55 %"));
    window.close();
    bring(measured(66));
    open();
    EXPECT_TRUE(says("5 h 66 %"));
    EXPECT_NE(settings.get(Settings::usageGeometry), "");
}

TEST_F(UsageWindowTest, letsOneChooseTheAccount) {
    nextUsage = measured(42, {"a", "b"});
    begin({});
    open();
    EXPECT_TRUE(says("5 h 11 %"));
    auto& accounts = *window.findChild<QComboBox*>();
    ASSERT_EQ(accounts.count(), 2);
    QTest::keyClick(&accounts, Qt::Key_Down);
    EXPECT_TRUE(says("5 h 77 %"));
    bring(measured(43, {"a", "b"}));
    EXPECT_TRUE(says("5 h 77 %")) << "the choice stays";
    bring(measured(43));
    EXPECT_FALSE(accounts.isVisible());
    EXPECT_TRUE(says("5 h 43 %"));
}

TEST_F(UsageWindowTest, showsCodexAndPlans) {
    nextUsage.codex = CodexLimits{
        .windows = {{.usedPercent = 31, .windowMinutes = 300, .resetsAt = start + Seconds(600)}}};
    nextUsage.plans = {{.agent = SessionAgent(), .name = "Max 20x", .isFlatRate = true}};
    begin({});
    open();
    EXPECT_TRUE(says("5-Stunden-Fenster: 31 %"));
    EXPECT_TRUE(says("Claude Code: Max 20x"));
    nextUsage.codex.reset();
    bring(nextUsage);
    EXPECT_FALSE(says("31 %"));
}

TEST_F(UsageWindowTest, showsTheDaysAsChartOrTable) {
    writeBilledSession(home, "a", 4.2);
    begin({session("a", SessionState::decision)});
    open();
    turnTo(Qt::Key_2);
    EXPECT_TRUE(says("1 Mio."));
    EXPECT_EQ(visibleCount<DayBars>(), 1);
    chip("Geld").click();
    EXPECT_TRUE(says("5,00 $"));
    chip("Tabelle").click();
    EXPECT_EQ(visibleCount<DayBars>(), 0);
    EXPECT_EQ(visibleCount<QTableView>(), 1);

    loop.advance(Seconds(600));
    finishAll();
    turnTo(Qt::Key_6);
    EXPECT_TRUE(says("Insgesamt 10 min"));
    EXPECT_EQ(visibleCount<QTableView>(), 2);
}

TEST_F(UsageWindowTest, ranksProjectsAndModelsOfThePeriod) {
    writeBilledSession(home, "a", 4.2);
    writeBilledSession(home, "b", 5);
    past = {entry("b", "Alt", "/srv/b")};
    begin({session("a", SessionState::working)});
    open();
    turnTo(Qt::Key_4);
    finishAll();
    chip("Geld").click();
    auto& bars = *window.currentPage().findChild<RankBars*>();
    QTest::keyClick(&bars, Qt::Key_Home);
    EXPECT_TRUE(bars.accessibleName().endsWith("/srv/a · 1 Sitzung · 1 Mio. Tokens · 5,00 $"))
        << bars.accessibleName().toStdString();
    turnTo(Qt::Key_3);
    EXPECT_TRUE(says("Insgesamt 2 Mio."));
    loop.advance(Seconds(10 * 86'400));
    finishAll();
    chip("7 Tage").click();
    EXPECT_TRUE(says("nichts verbraucht"));
    chip("Alles").click();
    EXPECT_TRUE(says("Insgesamt 2 Mio."));
}

TEST_F(UsageWindowTest, leadsFromTheTableToSessions) {
    writeBilledSession(home, "a", 4.2);
    writeBilledSession(home, "b", 5);
    writeBilledSession(home, "c", 7);
    past = {entry("b", "Rename the module", "/srv/b")};
    begin({session("a", SessionState::working)});
    open();
    turnTo(Qt::Key_5);
    finishAll();
    auto& table = *window.currentPage().findChild<QTableView*>();
    const QAbstractItemModelTester tester(table.model());
    const auto names = [&] {
        QStringList all;
        for (int row = 0; row < table.model()->rowCount(); ++row)
            all << table.model()->index(row, 0).data().toString();
        return all.join(u',');
    };
    EXPECT_TRUE(says("3 Sitzungen · 3 Mio. Tokens · 16,20 $"));
    table.sortByColumn(static_cast<int>(SessionColumn::cost), Qt::DescendingOrder);
    EXPECT_EQ(names(), "c,Rename the module,a");
    QTest::keyClick(&window, Qt::Key_F, Qt::ControlModifier);
    auto& search = *window.currentPage().findChild<QLineEdit*>();
    QTest::keyClicks(&search, "module SRV");
    EXPECT_EQ(names(), "Rename the module");
    QTest::keyClick(&search, Qt::Key_Down);
    QTest::keyClick(&table, Qt::Key_Return);
    EXPECT_EQ(commands, (std::vector<std::string>{"resume b"}));
    writeBilledSession(home, "aa", 1);
    loop.advance(Seconds(60));
    collect({session("a", SessionState::working)});
    EXPECT_EQ(names(), "Rename the module");
    EXPECT_EQ(table.currentIndex().row(), 0) << "the selection stays";
    QTest::keyClick(&search, Qt::Key_Escape);
    EXPECT_EQ(names(), "c,Rename the module,a,aa");
    table.setCurrentIndex(table.model()->index(2, 0));
    commandOutcome = tl::unexpected(std::string("Das Fenster ist zu."));
    QTest::keyClick(&table, Qt::Key_Return);
    EXPECT_EQ(commands.back(), "focus a");
    EXPECT_TRUE(says("Das Fenster ist zu."));
}

TEST(SessionUsageModel, showsMarkupInTooltipsAsItIs) {
    for (const char* name : {"<b>x</b>", "a <img src='/etc/hosts'> b", "&lt;i", "a < b"}) {
        SessionUsageModel model;
        model.setSessions({{.id = "a", .name = name}});
        const QString tooltip = model.index(0, 0).data(Qt::ToolTipRole).toString();
        QTextDocument document;
        // As QToolTip decides.
        if (Qt::mightBeRichText(tooltip)) {
            document.setHtml(tooltip);
        } else {
            document.setPlainText(tooltip);
        }
        EXPECT_EQ(document.toPlainText().section(u'\n', 0, 0), name);
    }
}

TEST_F(UsageWindowTest, followsThePinOfTheSettings) {
    begin({});
    for (const bool isPinned : {true, false}) {
        monitor.change(Settings::usagePinned, isPinned);
        EXPECT_EQ(window.windowFlags().testFlag(Qt::WindowStaysOnTopHint), isPinned);
    }
}

TEST_F(UsageWindowTest, holdsWhereTextsAreLarge) {
    begin({});
    open();
    QFont large = window.font();
    large.setPointSizeF(2 * large.pointSizeF());
    window.setFont(large);
    window.resize(500, 600);
    QApplication::processEvents();
    EXPECT_LE(window.width(), 700);
    const auto inWindow = [&](const QWidget& chip) {
        return window.rect().contains(QRect(chip.mapTo(&window, QPoint()), chip.size()));
    };
    for (const char* page : {"Kontingent", "Sitzungen", "Preise", "Tabelle"})
        EXPECT_TRUE(inWindow(chip(page))) << page;
}

TEST_F(UsageWindowTest, leavesOutWhatTheSettingsDoNotWant) {
    begin({});
    open();
    monitor.change(Settings::usageShowsQuota, false);
    EXPECT_THROW(chip("Kontingent"), std::runtime_error);
    EXPECT_EQ(window.currentPage().subject(), UsagePage::Subject::spending);
    monitor.change(Settings::costDisplay, "off");
    EXPECT_THROW(chip("Geld"), std::runtime_error);
    EXPECT_THROW(chip("Preise"), std::runtime_error);
    QTest::keyClick(&window, Qt::Key_Escape);
    EXPECT_FALSE(window.isVisible());
}

}  // namespace
}  // namespace fleetwise::testing
