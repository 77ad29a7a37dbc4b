#pragma once

#include "session/session_state.h"

#include <QColor>
#include <QFont>
#include <QPalette>

#include <string_view>

namespace fleetwise {

enum class Appearance { light, dark };

/// The colours of one appearance. Every text colour reaches 4.5:1 on each of the three grounds,
/// every other mark 3:1; hairlines only divide.
struct Palette {
    QColor ground;     ///< lists, the popover
    QColor window;     ///< around them
    QColor hover;      ///< the row under the pointer
    QColor text;       ///< names, labels
    QColor secondary;  ///< details, times
    QColor hairline;
    QColor warning;     ///< a bar above its threshold
    QColor attention;   ///< somebody waits for the user
    QColor accent;      ///< the desktop's own: its highlight
    QColor accentText;  ///< on the accent

    bool operator==(const Palette&) const = default;
};

/// Distances in device-independent pixels, on a grid of four.
struct Metrics {
    static constexpr int grid = 4;
    static constexpr int gap = 8;
    static constexpr int margin = 12;
    static constexpr int groupGap = 16;
    static constexpr int rowRadius = 6;  ///< rows and chips
    static constexpr int popoverRadius = 10;
    static constexpr int glyphSide = 14;
};

/// The share from which on a bar warns.
inline constexpr double warningShare = 0.8;

/// Light or dark, by which of window and text is the lighter one.
Appearance appearanceOf(const QPalette& palette);

/// `mode` is the setting: "light", "dark", and anything else as "system", which follows `system`,
/// the palette of the desktop.
Appearance appearanceFor(std::string_view mode, const QPalette& system);

/// Our colours with the accent of `native`.
Palette paletteOf(Appearance appearance, const QPalette& native);

/// Our colours for a widget or delegate that paints itself, by the palette that it has.
Palette paletteOf(const QPalette& ofWidget);

/// The colour of the state's glyph. As text it reaches 4.5:1 on ground and window, not on hover.
QColor stateColour(SessionState state, Appearance appearance);

/// The palette for QApplication: the desktop's, with our colours where we have them. The highlight
/// stays the desktop's. An appearance that is not the desktop's also gets buttons that fit.
QPalette applicationPalette(Appearance appearance, const QPalette& system);

/// The desktop's font, one and a half points smaller.
QFont smallFont(const QFont& body);

/// The desktop's font, two points larger and semibold.
QFont headingFont(const QFont& body);

/// The desktop's font, semibold: the name of a session that needs attention. Figures in columns
/// are right-aligned in any font: Qt 6.4 cannot ask for the tabular ones.
QFont emphasisedFont(const QFont& body);

}  // namespace fleetwise
