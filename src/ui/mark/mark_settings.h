#pragma once

#include "monitor/settings.h"
#include "ui/mark/mark_painter.h"

namespace fleetwise {

/// What of the figures the user wants the mark to show.
struct MarkChoices {
    bool working = true;
    bool fiveHour = true;
    bool sevenDay = true;
    bool reset = false;

    bool operator==(const MarkChoices&) const = default;
};

MarkChoices markChoices(const Settings& settings);

/// `all` without what was not chosen. The sign that somebody waits is always shown.
MarkFigures shownFigures(MarkFigures all, const MarkChoices& choices);

}  // namespace fleetwise
