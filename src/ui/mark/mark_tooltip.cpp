#include "ui/mark/mark_tooltip.h"

#include "foundation/brand.h"
#include "localisation/localisation.h"

namespace fleetwise {

namespace {

std::string sessionsText(int working, int attention) {
    if (working <= 0 && attention <= 0) return localised("alles ruhig"_text);
    std::string text;
    if (working > 0) text = localisedCount(working, "%d arbeitet"_text, "%d arbeiten"_text);
    if (attention <= 0) return text;
    if (!text.empty()) text += ", ";
    return text + localisedCount(attention, "%d braucht dich"_text, "%d brauchen dich"_text);
}

}  // namespace

std::string markTooltip(const MarkTooltip& tooltip) {
    std::string text =
        std::string(Brand::bundleName) + ": " + sessionsText(tooltip.working, tooltip.attention);
    for (const std::string& line : tooltip.quota)
        text += '\n' + line;
    return text;
}

}  // namespace fleetwise
