#pragma once

#include "fleet/session.h"

#include <optional>
#include <string>
#include <vector>

namespace fleetwise {

/// Running sessions that work in the same folder and are in no federation: probably they work on
/// the same thing.
struct FederationSuggestion {
    std::string directory;
    std::vector<std::string> sessionIds;      ///< in the list's order; with `federationId` at least
                                              ///< one, else at least two
    std::optional<std::string> federationId;  ///< the one that others in the folder belong to

    bool operator==(const FederationSuggestion&) const = default;
};

/// At most one suggestion for each folder, ordered by folder.
std::vector<FederationSuggestion> federationSuggestions(const std::vector<Session>& sessions);

/// The federation that a session which takes over from the one with the id `from` is to belong
/// to: that session's own, else the one suggested for its folder, else a new one named after it.
std::string federationForHandoff(const std::string& from, const std::vector<Session>& sessions);

}  // namespace fleetwise
