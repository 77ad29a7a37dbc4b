#include "app/feed_address.h"

namespace fleetwise {

std::string feedAddress(const Settings& settings) {
    const std::string chosen = settings.get(Settings::feedURL);
    return chosen.empty() ? FLEETWISE_FEED_URL : chosen;
}

}  // namespace fleetwise
