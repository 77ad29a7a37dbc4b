#pragma once

#include "ui/base/theme.h"

#include <QIcon>
#include <QPainter>
#include <QRectF>

#include <optional>
#include <string>

namespace fleetwise {

/// What the mark shows. What is absent is not drawn, and the rest takes its room.
struct MarkFigures {
    std::optional<int> working;        ///< sessions at work; from 100 on the mark shows 99
    std::optional<double> fiveHour;    ///< used share of the quota of five hours; 1 is all of it
    std::optional<double> sevenDay;    ///< used share of the quota of seven days
    std::optional<std::string> reset;  ///< until the five hours start anew, short: "2 h", "45 m"
    std::optional<double> resetShare;  ///< share of the five hours that has passed, 0 to 1
    bool needsAttention = false;       ///< a session waits for the user

    bool operator==(const MarkFigures&) const = default;
};

enum class MarkStyle {
    coloured,
    badge,     ///< coloured, on a dark disc of its own, for panels of a colour we cannot know
    symbolic,  ///< in the one colour of the panel's text
};

/// Draws the mark in the middle of `area`, as large as fits: a ring of the quota of five hours,
/// within it one of seven days, around the count of working sessions. Without a count the centre
/// shows when the five hours start anew; with one, a notch in the outer ring does. Below 20 device
/// pixels the two rings are one, of the quota that is used up further. `panel` is what the mark
/// stands on, of no matter to a badge; nothing is painted where the mark is not.
void paintMark(QPainter& painter, const QRectF& area, const MarkFigures& figures, MarkStyle style,
               Appearance panel);

/// The mark at the sizes that trays ask for, at device ratios 1 and 2.
QIcon markIcon(const MarkFigures& figures, MarkStyle style, Appearance panel);

}  // namespace fleetwise
