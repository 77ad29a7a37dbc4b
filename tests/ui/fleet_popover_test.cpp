#include "ui/tray/fleet_popover.h"

#include "ui/base/theme.h"

#include <QApplication>
#include <QKeyEvent>
#include <QScreen>
#include <QStandardItemModel>
#include <QStyledItemDelegate>
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

TEST_F(FleetPopoverTest, staysClosedAtTheClickThatClosedIt) {
    open();
    popover.hide();
    open();
    EXPECT_FALSE(popover.isVisible());
}

}  // namespace
}  // namespace fleetwise::testing
