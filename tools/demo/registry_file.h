#pragma once

#include "demo/scenes.h"

#include <map>
#include <string>

namespace fleetwise::demo {

/// The agent's registry entry of one running session, which the agent keeps in step with what the
/// session does.
class RegistryFile {
public:
    RegistryFile(std::string path, Json entry);

    /// The entries in the folder, by session id.
    static std::map<std::string, RegistryFile> of(const std::string& directory);

    /// Writes what the session does from `now` on. An ended session has no entry.
    void update(Standing standing, Date now);

private:
    std::string path;
    Json entry;
};

}  // namespace fleetwise::demo
