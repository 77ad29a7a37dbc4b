#include "app/usage_places.h"

#include "sources/paths.h"

namespace fleetwise {

UsageCollector::Places usagePlacesOfThisUser() {
    return {.projectsDirectory = Paths::projectsDir(),
            .codexDirectory = Paths::codexDir(),
            .claudeConfiguration = Paths::claudeConfigurationFile(),
            .ownSamples = Paths::usageSamplesFile(),
            .codexGoals = Paths::goalsFile()};
}

}  // namespace fleetwise
