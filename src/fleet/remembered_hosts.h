#pragma once

#include "fleet/session.h"
#include "sources/host_app_memory.h"

#include <map>
#include <string>
#include <vector>

namespace fleetwise {

/// Gives each session without a host the one it was last seen in.
void fillRememberedHosts(std::vector<Session>& sessions,
                         const std::map<std::string, HostAppMemory::Host>& remembered);

}  // namespace fleetwise
