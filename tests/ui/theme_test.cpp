#include "ui/base/theme.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>

namespace fleetwise::testing {
namespace {

constexpr double leastForText = 4.5;
constexpr double leastForGlyphs = 3;

/// By the formula of WCAG 2.
double luminance(const QColor& colour) {
    const auto linear = [](double share) {
        return share <= 0.04045 ? share / 12.92 : std::pow((share + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(colour.redF()) + 0.7152 * linear(colour.greenF()) +
           0.0722 * linear(colour.blueF());
}

double contrast(const QColor& one, const QColor& other) {
    const auto [darker, lighter] = std::minmax({luminance(one), luminance(other)});
    return (lighter + 0.05) / (darker + 0.05);
}

class Theme : public ::testing::TestWithParam<Appearance> {
protected:
    Palette palette = paletteOf(GetParam(), QPalette());
    std::array<QColor, 3> grounds{palette.ground, palette.window, palette.hover};
};

TEST_P(Theme, keepsTextReadableOnEveryGround) {
    for (const auto& ground : grounds) {
        EXPECT_GE(contrast(palette.text, ground), leastForText) << ground.name().toStdString();
        EXPECT_GE(contrast(palette.secondary, ground), leastForText) << ground.name().toStdString();
        EXPECT_GE(contrast(palette.warning, ground), leastForGlyphs);
        EXPECT_GE(contrast(palette.attention, ground), leastForGlyphs);
    }
}

TEST_P(Theme, keepsEveryStateVisible) {
    for (const auto state : allSessionStates) {
        SCOPED_TRACE(rawValue(state));
        const QColor colour = stateColour(state, GetParam());
        for (const auto& ground : grounds)
            EXPECT_GE(contrast(colour, ground), leastForGlyphs) << ground.name().toStdString();
        EXPECT_GE(contrast(colour, palette.ground), leastForText);
        EXPECT_GE(contrast(colour, palette.window), leastForText);
    }
}

/// Whatever the desktop looks like, what we set fits together and follows what was asked for.
TEST_P(Theme, givesTheApplicationReadablePalettes) {
    for (const auto& system : {QPalette(QColor(Qt::white)), QPalette(QColor(0x20, 0x20, 0x20))}) {
        const QPalette applied = applicationPalette(GetParam(), system);
        EXPECT_EQ(appearanceOf(applied), GetParam());
        EXPECT_EQ(paletteOf(applied), paletteOf(GetParam(), system));
        const auto pairs = {std::pair(QPalette::WindowText, QPalette::Window),
                            std::pair(QPalette::Text, QPalette::Base),
                            std::pair(QPalette::PlaceholderText, QPalette::Base),
                            std::pair(QPalette::Link, QPalette::Base),
                            std::pair(QPalette::ToolTipText, QPalette::ToolTipBase),
                            std::pair(QPalette::ButtonText, QPalette::Button)};
        for (const auto& [text, ground] : pairs) {
            EXPECT_GE(contrast(applied.color(text), applied.color(ground)), leastForText)
                << text << " on " << ground;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Appearances, Theme, ::testing::Values(Appearance::light, Appearance::dark),
                         [](const auto& instance) {
                             return instance.param == Appearance::light ? "light" : "dark";
                         });

TEST(Appearance, followsTheSettingElseTheDesktop) {
    const QPalette dark(QColor(0x20, 0x20, 0x20));
    EXPECT_EQ(appearanceFor("light", dark), Appearance::light);
    EXPECT_EQ(appearanceFor("dark", QPalette(QColor(Qt::white))), Appearance::dark);
    EXPECT_EQ(appearanceFor("system", dark), Appearance::dark);
    EXPECT_EQ(appearanceFor("", QPalette(QColor(Qt::white))), Appearance::light);
}

}  // namespace
}  // namespace fleetwise::testing
