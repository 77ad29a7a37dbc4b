#include "fleet/federations.h"

#include <algorithm>
#include <map>

namespace fleetwise {

namespace {

constexpr std::size_t newIdLength = 8;

}  // namespace

std::vector<FederationSuggestion> federationSuggestions(const std::vector<Session>& sessions) {
    std::map<std::string, FederationSuggestion> byFolder;
    for (const Session& session : sessions) {
        if (!session.isLive || !session.cwd) continue;
        FederationSuggestion& suggestion = byFolder[*session.cwd];
        suggestion.directory = *session.cwd;
        if (!session.federationId) {
            suggestion.sessionIds.push_back(session.id);
        } else if (!suggestion.federationId) {
            suggestion.federationId = session.federationId;
        }
    }
    std::vector<FederationSuggestion> suggestions;
    for (auto& [folder, suggestion] : byFolder) {
        if (suggestion.sessionIds.size() + (suggestion.federationId ? 1 : 0) < 2) continue;
        if (!suggestion.sessionIds.empty()) suggestions.push_back(std::move(suggestion));
    }
    return suggestions;
}

std::string federationForHandoff(const std::string& from, const std::vector<Session>& sessions) {
    for (const Session& session : sessions) {
        if (session.id == from && session.federationId) return *session.federationId;
    }
    for (const FederationSuggestion& suggestion : federationSuggestions(sessions)) {
        const auto& ids = suggestion.sessionIds;
        const bool isMeant = std::find(ids.begin(), ids.end(), from) != ids.end();
        if (isMeant && suggestion.federationId) return *suggestion.federationId;
    }
    return from.substr(0, newIdLength);
}

}  // namespace fleetwise
