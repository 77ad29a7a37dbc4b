#include "ui/mark/mark_settings.h"

namespace fleetwise {

MarkChoices markChoices(const Settings& settings) {
    return {.working = settings.get(Settings::markShowsWorking),
            .fiveHour = settings.get(Settings::markShowsFiveHour),
            .sevenDay = settings.get(Settings::markShowsSevenDay),
            .reset = settings.get(Settings::markShowsReset)};
}

MarkFigures shownFigures(MarkFigures all, const MarkChoices& choices) {
    if (!choices.working) all.working.reset();
    if (!choices.fiveHour) all.fiveHour.reset();
    if (!choices.sevenDay) all.sevenDay.reset();
    if (!choices.reset) {
        all.reset.reset();
        all.resetShare.reset();
    }
    return all;
}

}  // namespace fleetwise
