#include "ui/base/theme.h"

#include <QFontInfo>

#include <algorithm>
#include <array>

namespace fleetwise {

namespace {

constexpr double smallestPoints = 6;

struct StateColours {
    QRgb light;
    QRgb dark;
};

/// In the order of SessionState.
constexpr std::array<StateColours, allSessionStates.size()> stateColours{{
    {0xFFB45309, 0xFFFDBA74},  // decision
    {0xFFC2410C, 0xFFFB923C},  // waiting
    {0xFFB91C1C, 0xFFF87171},  // failed
    {0xFF15803D, 0xFF4ADE80},  // done
    {0xFF1D4ED8, 0xFF60A5FA},  // working
    {0xFF4338CA, 0xFFA5B4FC},  // waitingForSubagents
    {0xFF7E22CE, 0xFFD8B4FE},  // compacting
    {0xFF57606A, 0xFFA1A1AA},  // idle
    {0xFF0F766E, 0xFF5EEAD4},  // scheduled
    {0xFF57606A, 0xFFA1A1AA},  // unknown
    {0xFF65656B, 0xFF8E8E96},  // dormant
}};

Palette ownColours(Appearance appearance) {
    if (appearance == Appearance::light) {
        return {.ground = QColor(0xFF, 0xFF, 0xFF),
                .window = QColor(0xF5, 0xF5, 0xF7),
                .hover = QColor(0xF0, 0xF0, 0xF3),
                .text = QColor(0x1D, 0x1D, 0x1F),
                .secondary = QColor(0x65, 0x65, 0x6B),
                .hairline = QColor(0xE2, 0xE2, 0xE6)};
    }
    return {.ground = QColor(0x1E, 0x1E, 0x20),
            .window = QColor(0x16, 0x16, 0x18),
            .hover = QColor(0x29, 0x29, 0x2D),
            .text = QColor(0xF2, 0xF2, 0xF4),
            .secondary = QColor(0xA3, 0xA3, 0xAB),
            .hairline = QColor(0x30, 0x30, 0x34)};
}

QFont resized(const QFont& body, double addedPoints) {
    QFont font = body;
    font.setPointSizeF(std::max(smallestPoints, QFontInfo(body).pointSizeF() + addedPoints));
    return font;
}

}  // namespace

Appearance appearanceOf(const QPalette& palette) {
    const bool isDark = palette.color(QPalette::Window).lightnessF() <
                        palette.color(QPalette::WindowText).lightnessF();
    return isDark ? Appearance::dark : Appearance::light;
}

Appearance appearanceFor(std::string_view mode, const QPalette& system) {
    if (mode == "light") return Appearance::light;
    if (mode == "dark") return Appearance::dark;
    return appearanceOf(system);
}

Palette paletteOf(Appearance appearance, const QPalette& native) {
    Palette palette = ownColours(appearance);
    palette.warning = stateColour(SessionState::decision, appearance);
    palette.attention = stateColour(SessionState::waiting, appearance);
    palette.accent = native.color(QPalette::Active, QPalette::Highlight);
    palette.accentText = native.color(QPalette::Active, QPalette::HighlightedText);
    return palette;
}

Palette paletteOf(const QPalette& ofWidget) {
    return paletteOf(appearanceOf(ofWidget), ofWidget);
}

QColor stateColour(SessionState state, Appearance appearance) {
    const StateColours& colours = stateColours.at(static_cast<std::size_t>(state));
    return QColor::fromRgb(appearance == Appearance::light ? colours.light : colours.dark);
}

QPalette applicationPalette(Appearance appearance, const QPalette& system) {
    const Palette own = paletteOf(appearance, system);
    QPalette palette = system;
    if (appearanceOf(system) != appearance) {
        palette = QPalette(own.hover, own.window);
        palette.setColor(QPalette::Highlight, own.accent);
        palette.setColor(QPalette::HighlightedText, own.accentText);
    }
    palette.setColor(QPalette::Window, own.window);
    palette.setColor(QPalette::Base, own.ground);
    palette.setColor(QPalette::AlternateBase, own.window);
    palette.setColor(QPalette::ToolTipBase, own.ground);
    for (const auto role :
         {QPalette::WindowText, QPalette::Text, QPalette::ButtonText, QPalette::ToolTipText}) {
        palette.setColor(role, own.text);
        palette.setColor(QPalette::Disabled, role, own.secondary);
    }
    palette.setColor(QPalette::PlaceholderText, own.secondary);
    palette.setColor(QPalette::Link, stateColour(SessionState::working, appearance));
    return palette;
}

QFont smallFont(const QFont& body) {
    return resized(body, -1.5);
}

QFont headingFont(const QFont& body) {
    return emphasisedFont(resized(body, 2));
}

QFont emphasisedFont(const QFont& body) {
    QFont font = body;
    font.setWeight(QFont::DemiBold);
    return font;
}

}  // namespace fleetwise
