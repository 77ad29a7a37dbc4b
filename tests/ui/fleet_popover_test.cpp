#include "ui/tray/fleet_popover.h"

#include "ui/base/theme.h"

#include <QApplication>
#include <QKeyEvent>
#include <QScreen>
#include <QStandardItemModel>
#include <QStyledItemDelegate>
#include <QTest>
#include <QToolButton>
#include <gtest/gtest.h>

#include <vector>

namespace fleetwise::testing {
namespace {

class FleetPopoverTest : public ::testing::Test {
protected:
    FleetPopoverTest() {
        QObject::connect(&popover, &FleetPopover::activated,
                         [this](const QModelIndex& index) { activated.push_back(index.row()); });
    }

    void add(int count) {
        for (int row = 0; row < count; ++row)
            model.appendRow(new QStandardItem("session"));
        QApplication::processEvents();
    }

    void open() {
        popover.toggle(QRect(700, 0, 24, 24));
        QApplication::processEvents();
    }

    void press(int key) {
        QKeyEvent event(QEvent::KeyPress, key, Qt::NoModifier);
        QApplication::sendEvent(QApplication::focusWidget(), &event);
    }

    QStandardItemModel model;
    QStyledItemDelegate delegate;
    FleetPopover popover{model, delegate};
    std::vector<int> activated;
};

TEST_F(FleetPopoverTest, growsWithItsRowsUpToMostOfTheScreen) {
    open();
    ASSERT_TRUE(popover.isVisible());
    const int empty = popover.height();
    add(8);
    const int some = popover.height();
    add(2);
    const int rowHeight = popover.height() - some;
    EXPECT_GT(rowHeight, 0);
    EXPECT_GT(some, empty);
    popover.setQuota({.blocks = {{"", {{.text = "5 h 40 % · noch 2 h", .used = 0.4}}}}});
    QApplication::processEvents();
    EXPECT_GT(popover.height(), some + rowHeight) << "room for the quota";
    add(200);
    const QRect screen = popover.screen()->availableGeometry();
    EXPECT_EQ(popover.height(), static_cast<int>(screen.height() * 0.7));
    EXPECT_EQ(popover.width(), 360);
    EXPECT_TRUE(screen.contains(popover.geometry()));
    model.clear();
    QApplication::processEvents();
    EXPECT_LT(popover.height(), some);
}

TEST_F(FleetPopoverTest, isUsedWithTheKeyboard) {
    add(3);
    open();
    press(Qt::Key_Return);
    EXPECT_TRUE(activated.empty()) << "nothing is selected yet";
    press(Qt::Key_Down);
    press(Qt::Key_Return);
    press(Qt::Key_Down);
    press(Qt::Key_Enter);
    EXPECT_EQ(activated, (std::vector<int>{0, 1}));
    press(Qt::Key_Escape);
    EXPECT_FALSE(popover.isVisible());
}

TEST_F(FleetPopoverTest, asksForTheMenuOfARow) {
    std::vector<int> wanted;
    QObject::connect(&popover, &FleetPopover::menuWanted,
                     [&](const QModelIndex& index, const QPoint& place) {
                         EXPECT_TRUE(popover.frameGeometry().contains(place));
                         wanted.push_back(index.row());
                     });
    add(3);
    open();
    press(Qt::Key_Menu);
    EXPECT_TRUE(wanted.empty()) << "nothing is selected yet";
    press(Qt::Key_Down);
    press(Qt::Key_Menu);
    auto& list = *popover.findChild<QListView*>();
    const QPoint place = list.visualRect(model.index(1, 0)).center();
    QContextMenuEvent rightButton(QContextMenuEvent::Mouse, place,
                                  list.viewport()->mapToGlobal(place));
    QApplication::sendEvent(list.viewport(), &rightButton);
    EXPECT_EQ(wanted, (std::vector<int>{0, 1}));
    QTest::mouseClick(list.viewport(), Qt::LeftButton, {},
                      list.visualRect(model.index(2, 0)).center());
    EXPECT_EQ(activated, (std::vector<int>{2}));
}

TEST_F(FleetPopoverTest, showsTheWholeSumWhereTextsAreLarge) {
    add(3);
    popover.setCosts("Heute ≈ 1.234.567 $ + ?", {});
    open();
    for (const double factor : {1.0, 2.0}) {
        QFont font = QApplication::font();
        font.setPointSizeF(factor * font.pointSizeF());
        popover.setFont(font);
        QApplication::processEvents();
        for (const QLabel* label : popover.findChildren<QLabel*>()) {
            if (!label->isVisible()) continue;
            EXPECT_GE(label->width(), label->sizeHint().width());
        }
        for (const QToolButton* button : popover.findChildren<QToolButton*>()) {
            const QRect area(button->mapTo(&popover, QPoint()), button->size());
            EXPECT_TRUE(popover.rect().contains(area)) << button->text().toStdString();
        }
    }
}

TEST_F(FleetPopoverTest, staysClosedAtTheClickThatClosedIt) {
    open();
    popover.hide();
    open();
    EXPECT_FALSE(popover.isVisible());
}

}  // namespace
}  // namespace fleetwise::testing
