// The usage window as its user meets it: what it says without data, and that it follows the monitor
// while it can be seen.

#include "ui/usage/usage_window.h"

#include "monitor/virtual_fleet.h"
#include "ui/base/chip_button.h"
#include "ui/billed_session.h"
#include "ui/charts/day_bars.h"
#include "ui/charts/time_chart.h"
#include "ui/made_up_usage.h"

#include <QComboBox>
#include <QLabel>
#include <QTableView>
#include <QTest>
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
        const auto found = std::ranges::find(chips, text, &QToolButton::text);
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

    UsageWindow window{monitor};
};

TEST_F(UsageWindowTest, tellsWhatWillAppearWhereThereIsNothing) {
    begin({});
    open();
    EXPECT_TRUE(says("plan-usage-history.json"));
    EXPECT_EQ(visibleCount<TimeChart>(), 0);
    turnTo(Qt::Key_2);
    EXPECT_TRUE(says("nichts verbraucht"));
    turnTo(Qt::Key_3);
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
    turnTo(Qt::Key_3);
    EXPECT_TRUE(says("Insgesamt 10 min"));
    EXPECT_EQ(visibleCount<QTableView>(), 2);
}

TEST_F(UsageWindowTest, leavesOutWhatTheSettingsDoNotWant) {
    begin({});
    open();
    monitor.change(Settings::usageShowsQuota, false);
    EXPECT_FALSE(chip("Kontingent").isVisible());
    EXPECT_EQ(window.currentPage().subject(), UsagePage::Subject::spending);
    monitor.change(Settings::costDisplay, "off");
    EXPECT_FALSE(chip("Geld").isVisible());
    QTest::keyClick(&window, Qt::Key_Escape);
    EXPECT_FALSE(window.isVisible());
}

}  // namespace
}  // namespace fleetwise::testing
