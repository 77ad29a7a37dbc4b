#include "fleet/remembered_hosts.h"

namespace fleetwise {

void fillRememberedHosts(std::vector<Session>& sessions,
                         const std::map<std::string, HostAppMemory::Host>& remembered) {
    for (Session& session : sessions) {
        if (session.hostApp || session.hostBundleId) continue;
        const auto host = remembered.find(session.id);
        if (host == remembered.end()) continue;
        session.hostApp = host->second.app;
        session.hostBundleId = host->second.bundleId;
    }
}

}  // namespace fleetwise
