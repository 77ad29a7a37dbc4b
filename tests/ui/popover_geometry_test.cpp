#include "ui/tray/popover_geometry.h"

#include <gtest/gtest.h>

namespace fleetwise::testing {
namespace {

constexpr QRect screen(100, 50, 1000, 800);
constexpr QSize content(360, 300);
constexpr QSize item(24, 24);

struct Placement {
    const char* name;
    QRect anchor;
    QRect expected;
};

TEST(PopoverRect, opensBesideTheMarkAndOnTheScreen) {
    const Placement placements[] = {
        {"panel at the top", {{600, 52}, item}, {{432, 80}, content}},
        {"panel above the usable screen", {{600, 20}, item}, {{432, 50}, content}},
        {"panel at the bottom", {{600, 824}, item}, {{432, 520}, content}},
        {"panel on the left", {{102, 400}, item}, {{130, 262}, content}},
        {"panel on the right", {{1074, 400}, item}, {{710, 262}, content}},
        {"the end of the panel at the top", {{1070, 52}, item}, {{740, 80}, content}},
        {"the beginning of it", {{110, 52}, item}, {{100, 80}, content}},
        {"only the pointer, above", {{900, 60}, QSize()}, {{732, 58}, content}},
        {"only the pointer, below", {{300, 840}, QSize(0, 0)}, {{732, 542}, content}},
    };
    for (const auto& [name, anchor, expected] : placements) {
        EXPECT_EQ(popoverRect(anchor, content, screen), expected) << name;
    }
}

TEST(PopoverRect, isNeverTooHighOrWide) {
    const QRect high = popoverRect({{600, 824}, item}, {360, 5000}, screen);
    EXPECT_EQ(high.height(), 560);
    EXPECT_TRUE(screen.contains(high));
    const QRect small(0, 0, 200, 100);
    EXPECT_TRUE(small.contains(popoverRect({{190, 0}, item}, content, small)));
}

}  // namespace
}  // namespace fleetwise::testing
