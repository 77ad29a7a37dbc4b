#include "ui/mark_tooltip.h"

#include "foundation/brand.h"
#include "localisation/duration_format.h"
#include "localisation/localisation.h"

#include <algorithm>
#include <cmath>

namespace fleetwise {

namespace {

std::string counted(int count, Text one, Text several) {
    return count == 1 ? localised(one) : localisedFormat(several, count);
}

std::string sessionsText(int working, int attention) {
    if (working <= 0 && attention <= 0) return localised("alles ruhig"_text);
    std::string text;
    if (working > 0) text = counted(working, "1 arbeitet"_text, "%d arbeiten"_text);
    if (attention <= 0) return text;
    if (!text.empty()) text += ", ";
    return text + counted(attention, "1 braucht dich"_text, "%d brauchen dich"_text);
}

std::string windowLine(Text name, const std::optional<MarkTooltip::Window>& window) {
    if (!window) return {};
    const long percent = std::lround(std::clamp(window->used, 0.0, 9.99) * 100);
    std::string line = "\n" + localised(name) + ": " + localisedFormat("%d %%"_text, percent);
    if (window->until) line += ", " + localisedFormat("noch %@"_text, durationText(*window->until));
    return line;
}

}  // namespace

std::string markTooltip(const MarkTooltip& tooltip) {
    return std::string(Brand::bundleName) + ": " +
           sessionsText(tooltip.working, tooltip.attention) +
           windowLine("5 h"_text, tooltip.fiveHour) + windowLine("7 d"_text, tooltip.sevenDay);
}

}  // namespace fleetwise
