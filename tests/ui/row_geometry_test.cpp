#include "ui/fleet/row_geometry.h"

#include <gtest/gtest.h>

#include <vector>

namespace fleetwise::testing {
namespace {

TEST(RowGeometry, keepsThePartsApartAndInside) {
    const RowTextSizes usual{
        .lineHeight = 18, .smallLineHeight = 15, .timeWidth = 70, .costWidth = 65};
    const RowTextSizes large{
        .lineHeight = 40, .smallLineHeight = 34, .timeWidth = 150, .costWidth = 140};
    for (const auto& sizes : {usual, large}) {
        for (const Density density : {Density::compact, Density::comfortable}) {
            for (const int width : {360, 600, 1000, 2500}) {
                SCOPED_TRACE(::testing::Message() << width << (sizes.lineHeight == 40 ? "L" : ""));
                const QRect row(0, 100, width, rowHeight(density, sizes));
                const RowGeometry geometry = rowGeometry(row, density, sizes);
                std::vector<QRect> parts;
                for (const QRect& part :
                     {geometry.glyph, geometry.name, geometry.detail, geometry.place,
                      geometry.origin, geometry.bar, geometry.cost, geometry.time}) {
                    if (part.isEmpty()) continue;
                    EXPECT_TRUE(row.contains(part));
                    for (const QRect& other : parts)
                        EXPECT_FALSE(part.intersects(other));
                    parts.push_back(part);
                }
                const RowActions actions = rowActions(row, sizes);
                EXPECT_TRUE(row.contains(actions.area()));
                EXPECT_FALSE(actions.act.intersects(actions.menu));
                EXPECT_FALSE(actions.area().intersects(geometry.glyph));
                EXPECT_GT(geometry.name.width(), 60) << "what it is called can be read";
                if (width != 600) {
                    EXPECT_EQ(geometry.cost.isEmpty(), density == Density::compact && width < 600);
                }
                EXPECT_EQ(geometry.detail.isEmpty(), density == Density::compact && width < 480);
            }
        }
    }
}

}  // namespace
}  // namespace fleetwise::testing
