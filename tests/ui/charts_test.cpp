// Charts as their user meets them: the marker by pointer and keys, the table beside them, the file.

#include "support/temporary_directory.h"
#include "ui/base/figure_table_model.h"
#include "ui/base/table_export.h"
#include "ui/charts/day_bars.h"
#include "ui/charts/rank_bars.h"
#include "ui/charts/time_chart.h"
#include "ui/usage/spending_page.h"

#include <QAbstractItemModelTester>
#include <QSignalSpy>
#include <QTest>
#include <gtest/gtest.h>

namespace fleetwise::testing {
namespace {

const Date start = dateFromSeconds(1'795'226'700);

TimeChartData course(std::size_t points, Date from) {
    TimeChartData data{.from = from,
                       .now = from + Seconds(86'400),
                       .latest = from + Seconds(86'400),
                       .longestGap = Seconds(1'800),
                       .calendar = ::date::locate_zone("Europe/Berlin")};
    for (std::size_t index = 0; index < points; ++index) {
        data.series.points.push_back(
            {from + Seconds(300.0 * static_cast<double>(index)), static_cast<int>(index % 100)});
    }
    return data;
}

TEST(Charts, moveOneMarkerByKeysAndPointer) {
    DayBars chart("Verbrauch");
    DayBarsData data{.ticks = {{0, "0"}, {4, "4"}}};
    for (int day = 0; day < 4; ++day)
        data.bars.push_back({.label = "x", .text = QString::number(day), .parts = {1.0 * day}});
    chart.setData(data);
    chart.resize(400, 200);
    chart.show();
    QSignalSpy told(&chart, &ChartWidget::markChanged);
    struct Case {
        Qt::Key key;
        std::optional<std::size_t> marked;
    };
    const std::vector<Case> cases{{Qt::Key_Left, 3}, {Qt::Key_Left, 2},  {Qt::Key_Home, 0},
                                  {Qt::Key_Left, 0}, {Qt::Key_Right, 1}, {Qt::Key_PageDown, 2},
                                  {Qt::Key_End, 3},  {Qt::Key_Right, 3}, {Qt::Key_Escape, {}}};
    for (const Case& each : cases) {
        QTest::keyClick(&chart, each.key);
        EXPECT_EQ(chart.marked(), each.marked) << each.key;
    }
    QTest::mouseMove(&chart, QPoint(chart.width() - 30, 100));
    EXPECT_EQ(chart.marked(), 3U);
    EXPECT_EQ(chart.accessibleName(), "Verbrauch: 3");
    EXPECT_EQ(told.last().first().toString(), "3");
    data.bars.resize(2);
    chart.setData(data);
    EXPECT_FALSE(chart.marked());
    EXPECT_EQ(chart.accessibleName(), "Verbrauch");
    QTest::keyClick(&chart, Qt::Key_End);
    chart.grab();
}

TEST(Charts, keepTheMarkerAtItsTimeAndStepByPixels) {
    TimeChart chart("Fenster");
    chart.resize(500, 200);
    QTest::keyClick(&chart, Qt::Key_Left);
    EXPECT_FALSE(chart.marked()) << "nothing to mark";
    chart.setData(course(200, start));
    chart.mark(100);
    const QString before = chart.accessibleName();
    TimeChartData later = course(200, start);
    later.series.points.erase(later.series.points.begin());
    later.from += Seconds(300);
    chart.setData(later);
    EXPECT_EQ(chart.marked(), 99U);
    EXPECT_EQ(chart.accessibleName(), before);

    TimeChartData dense = course(10'000, start);
    for (std::size_t index = 0; index < dense.series.points.size(); ++index)
        dense.series.points[index].date = start + Seconds(8.64 * static_cast<double>(index));
    chart.setData(dense);
    chart.mark(5'000);
    QTest::keyClick(&chart, Qt::Key_Left);
    EXPECT_LT(chart.marked(), 4'995U);
    chart.grab();
}

TEST(Charts, paintWhatIsExtreme) {
    TimeChart chart("Fenster");
    TimeChartData data = course(3, start);
    data.series.points[1].percent = 10'000;
    data.series.projection = QuotaSeries::Tail{data.now, 10'000, data.now, 12'000};
    data.tailLabel = "voll";
    chart.setData(data);
    for (const QSize size : {QSize(0, 0), QSize(20, 10), QSize(3'000, 40)}) {
        chart.resize(size);
        chart.grab();
    }
    RankBars ranks("Projekte");
    ranks.setRows({{.name = "a", .value = 0}, {.name = "b", .value = 0}});
    ranks.grab();
}

FigureTable tableOf(int first, int last) {
    FigureTable table{.headings = {"Zeit", "Wert"}};
    for (int row = first; row <= last; ++row) {
        table.rows.push_back(
            {{.text = std::to_string(row)}, {.text = "x", .number = static_cast<double>(row)}});
    }
    return table;
}

TEST(FigureTableModel, followsItsTableWithoutForgettingTheRowsThatStay) {
    FigureTableModel model;
    const QAbstractItemModelTester tester(&model);
    QSignalSpy resets(&model, &QAbstractItemModel::modelReset);
    model.setTable(tableOf(1, 10));
    const QPersistentModelIndex kept = model.index(4, 0);
    for (const auto& [first, last] : {std::pair{2, 11}, {4, 12}, {4, 9}, {4, 12}, {5, 30}}) {
        model.setTable(tableOf(first, last));
        ASSERT_EQ(model.rowCount(), last - first + 1);
        EXPECT_EQ(model.table(), tableOf(first, last));
        ASSERT_TRUE(kept.isValid());
        EXPECT_EQ(kept.data().toString(), "5");
    }
    EXPECT_EQ(resets.size(), 1);
    model.setTable(tableOf(100, 100));
    model.setTable({.headings = {"Zeit", "Wert"}});
    EXPECT_EQ(model.rowCount(), 0);
    model.setTable({});
    EXPECT_EQ(model.columnCount(), 0);
}

TEST(TableExport, writesTheFileOrSaysWhyNot) {
    const TemporaryDirectory folder;
    const QString path = QString::fromStdString(folder.at("Übersicht.csv"));
    EXPECT_EQ(exportTable(tableOf(1, 1), path), QString());
    EXPECT_EQ(contentsOf(folder.at("Übersicht.csv")), "Zeit,Wert\r\n1,1\r\n");
    const QString nowhere = QString::fromStdString(folder.at("gone/x.csv"));
    EXPECT_TRUE(exportTable(tableOf(1, 1), nowhere).contains(nowhere));
}

UsageDay dayWith(int models, std::int64_t tokens) {
    UsageDay day{.day = ::date::year(2026) / 11 / 21};
    for (int model = 0; model < models; ++model) {
        day.models.push_back({.name = "Modell " + std::to_string(model),
                              .tally = {.input = tokens * (model + 1)},
                              .api = {.usd = model == 0 ? std::optional<double>() : 2.0}});
    }
    return day;
}

TEST(SpendingFigures, stackFiveSeriesAtMost) {
    const auto five = spendingFigures({dayWith(5, 10), dayWith(0, 0)}, UsageFigure::tokens);
    EXPECT_FALSE(five.hasRest);
    EXPECT_EQ(five.days, (std::vector<std::vector<double>>{{50, 40, 30, 20, 10}, {0, 0, 0, 0, 0}}));
    const auto seven = spendingFigures({dayWith(7, 10), dayWith(1, 5)}, UsageFigure::tokens);
    EXPECT_TRUE(seven.hasRest);
    EXPECT_EQ(seven.series.back(), (SpendingFigures::Series{"Übrige", 30 + 20 + 10 + 5}));
    EXPECT_EQ(seven.days,
              (std::vector<std::vector<double>>{{70, 60, 50, 40, 60}, {0, 0, 0, 0, 5}}));
    const auto money = spendingFigures({dayWith(2, 10)}, UsageFigure::money);
    EXPECT_EQ(money.series, (std::vector<SpendingFigures::Series>{{"Modell 1", 2}}));
    const FigureTable table = spendingTable({dayWith(7, 10), dayWith(0, 0)}, UsageFigure::tokens);
    EXPECT_EQ(table.headings.size(), 1 + 7 + 1U);
    EXPECT_EQ(table.rows.front().back().number, 280);
    EXPECT_TRUE(spendingFigures({}, UsageFigure::tokens).series.empty());
}

}  // namespace
}  // namespace fleetwise::testing
