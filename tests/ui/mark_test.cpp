#include "ui/base/state_glyph.h"
#include "ui/mark/mark_painter.h"
#include "ui/mark/mark_settings.h"
#include "ui/mark/mark_tooltip.h"

#include <QImage>
#include <gtest/gtest.h>

#include <vector>

namespace fleetwise::testing {
namespace {

QImage blank(int side) {
    QImage image(side, side, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    return image;
}

QImage mark(const MarkFigures& figures, int side, MarkStyle style = MarkStyle::coloured,
            Appearance panel = Appearance::dark) {
    QImage image = blank(side);
    QPainter painter(&image);
    paintMark(painter, image.rect(), figures, style, panel);
    return image;
}

bool hasColour(const QImage& image, const QColor& colour) {
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (image.pixelColor(x, y) == colour) return true;
        }
    }
    return false;
}

TEST(Mark, looksDifferentForWhatDiffers) {
    const std::vector<MarkFigures> all{
        {},
        {.working = 0},
        {.working = 1},
        {.working = 7},
        {.working = 12},
        {.working = 99},
        {.working = 7, .needsAttention = true},
        {.working = 7, .fiveHour = 0.2},
        {.working = 7, .fiveHour = 0.4},
        {.working = 7, .fiveHour = 0.4, .resetShare = 0.7},
        {.working = 7, .sevenDay = 0.9},
        {.working = 7, .sevenDay = 1.0},
        {.reset = "2 h"},
        {.reset = "45 m"},
    };
    for (const int side : {16, 22, 24, 32, 48}) {
        for (std::size_t first = 0; first < all.size(); ++first) {
            for (std::size_t second = first + 1; second < all.size(); ++second) {
                EXPECT_NE(mark(all[first], side), mark(all[second], side))
                    << first << " and " << second << " at " << side;
            }
        }
    }
}

TEST(Mark, showsWhatItCannotShowAsTheNearest) {
    EXPECT_EQ(mark({.working = 4000}, 22), mark({.working = 99}, 22));
    EXPECT_EQ(mark({.fiveHour = 3}, 22), mark({.fiveHour = 1}, 22));
    EXPECT_EQ(mark({.fiveHour = -1}, 22), mark({.fiveHour = 0}, 22));
}

TEST(Mark, tellsAttentionByItsColour) {
    const QColor attention = stateColour(SessionState::waiting, Appearance::light);
    for (const int side : {16, 22, 48}) {
        const auto painted = [&](bool needsAttention, MarkStyle style) {
            return mark({.working = 7, .fiveHour = 0.5, .needsAttention = needsAttention}, side,
                        style, Appearance::light);
        };
        EXPECT_TRUE(hasColour(painted(true, MarkStyle::coloured), attention)) << side;
        EXPECT_FALSE(hasColour(painted(false, MarkStyle::coloured), attention)) << side;
        EXPECT_FALSE(hasColour(painted(true, MarkStyle::symbolic), attention)) << side;
    }
}

TEST(Mark, isSharpAtTheSizesOfTrays) {
    const QIcon icon = markIcon({.working = 3}, MarkStyle::coloured, Appearance::dark);
    for (const int side : {16, 22, 24, 32, 48}) {
        for (const double ratio : {1.0, 2.0}) {
            const int pixels = static_cast<int>(side * ratio);
            const QPixmap pixmap = icon.pixmap(QSize(side, side), ratio);
            EXPECT_EQ(pixmap.size(), QSize(pixels, pixels));
            EXPECT_EQ(pixmap.toImage()
                          .convertToFormat(QImage::Format_ARGB32_Premultiplied)
                          .pixel(pixels / 2, pixels / 2),
                      mark({.working = 3}, pixels).pixel(pixels / 2, pixels / 2));
        }
    }
}

TEST(MarkSettings, leaveOutWhatWasNotChosen) {
    const MarkFigures all{.working = 3,
                          .fiveHour = 0.5,
                          .sevenDay = 0.6,
                          .reset = "2 h",
                          .resetShare = 0.1,
                          .needsAttention = true};
    EXPECT_EQ(shownFigures(all, {.reset = true}), all);
    EXPECT_EQ(shownFigures(all, {.working = false, .fiveHour = false, .sevenDay = false}),
              (MarkFigures{.needsAttention = true}));
}

TEST(MarkTooltip, speaksInWords) {
    struct Wording {
        MarkTooltip tooltip;
        const char* expected;
    };
    const Wording wordings[] = {
        {{}, "Fleetwise: alles ruhig"},
        {{.working = 1}, "Fleetwise: 1 arbeitet"},
        {{.working = 3, .attention = 1}, "Fleetwise: 3 arbeiten, 1 braucht dich"},
        {{.attention = 2}, "Fleetwise: 2 brauchen dich"},
        {{.working = 2, .quota = {"5 h 42 %", "7 d 120 %"}},
         "Fleetwise: 2 arbeiten\n5 h 42 %\n7 d 120 %"},
    };
    for (const auto& [tooltip, expected] : wordings)
        EXPECT_EQ(markTooltip(tooltip), expected);
}

/// The shape alone tells a state, and only a working session's turns.
TEST(StateGlyph, hasAShapeOfItsOwnForEachState) {
    const auto glyph = [](SessionState state, double turn) {
        QImage image = blank(14);
        QPainter painter(&image);
        paintStateGlyph(painter, image.rect(), state, Qt::black, turn);
        return image;
    };
    for (const auto state : allSessionStates) {
        for (const auto other : allSessionStates) {
            EXPECT_EQ(glyph(state, 0) == glyph(other, 0), state == other)
                << rawValue(state) << " and " << rawValue(other);
        }
        EXPECT_EQ(glyph(state, 0) != glyph(state, 0.3), state == SessionState::working)
            << rawValue(state);
    }
}

}  // namespace
}  // namespace fleetwise::testing
