#include "app/program_version.h"

namespace fleetwise {

std::string programVersion() {
    return FLEETWISE_VERSION;
}

}  // namespace fleetwise
