#include "fleet/session_groups.h"

#include "fleet/federations.h"
#include "foundation/text.h"
#include "localisation/localisation.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <map>
#include <tuple>

namespace fleetwise {

namespace {

/// Groups of the lower rank come first.
enum class Rank { ordinary, suggestion, rest, selfDriven };

struct Place {
    Rank rank = Rank::ordinary;
    SessionGroup group;
    SessionState state = SessionState::decision;  ///< the same for all but groups by status
};

bool comesBefore(const Place& left, const Place& right) {
    return std::tuple(left.rank, left.state, caseFolded(left.group.title), left.group.key) <
           std::tuple(right.rank, right.state, caseFolded(right.group.title), right.group.key);
}

bool passes(const Session& session, ListFilter filter) {
    switch (filter) {
        case ListFilter::attention:
            return demandsAttention(session.state);
        case ListFilter::working:
            return isBusy(session.state);
        case ListFilter::dormant:
            return session.state == SessionState::dormant;
    }
    return true;
}

bool passesAny(const Session& session, const std::set<ListFilter>& filters) {
    return filters.empty() || std::any_of(filters.begin(), filters.end(), [&](ListFilter filter) {
               return passes(session, filter);
           });
}

std::vector<std::string> searchWords(const std::string& search) {
    std::vector<std::string> words;
    const std::string folded = caseFolded(search);
    std::string_view rest = trimmed(folded);
    while (!rest.empty()) {
        const auto length = std::min(rest.find(' '), rest.size());
        words.emplace_back(rest.substr(0, length));
        rest = trimmed(rest.substr(length));
    }
    return words;
}

/// The beginning of what the session said last: all that it may be, many times over with each key
/// that is typed, would be felt.
std::string_view searchedMessage(const Session& session) {
    constexpr std::size_t most = 2000;
    if (session.stats && session.stats->lastReply) {
        return std::string_view(*session.stats->lastReply).substr(0, most);
    }
    return session.lastMessage ? std::string_view(*session.lastMessage).substr(0, most) : "";
}

std::string searchableText(const Session& session, const ListRules& rules, Date now,
                           Calendar calendar) {
    const auto goal = rules.objectives.find(session.id);
    return caseFolded(fmt::format(
        "{}\n{}\n{}\n{}\n{}\n{}\n{}\n{}\n{}\n{}", session.displayName(), session.cwd.value_or(""),
        session.gitBranch.value_or(""), session.hostApp.value_or(""), session.model.value_or(""),
        session.agent.label(), label(session.state), session.detail(now, calendar),
        searchedMessage(session), goal == rules.objectives.end() ? "" : goal->second));
}

bool holdsAll(const std::string& text, const std::vector<std::string>& words) {
    return std::all_of(words.begin(), words.end(), [&](const std::string& word) {
        return text.find(word) != std::string::npos;
    });
}

/// Whether a session goes into the summary: never one that has a question or broke off, for those
/// a person has to see.
bool isSummarised(const Session& session) {
    return session.isSelfDriven() && session.state > SessionState::failed;
}

/// Decides which group a session stands in.
class Grouping {
public:
    Grouping(const std::vector<Session>& givenSessions, const ListRules& givenRules,
             const std::string& givenHome)
        : rules(givenRules), home(givenHome) {
        if (rules.groupMode != GroupMode::federation) return;
        for (const FederationSuggestion& suggestion : federationSuggestions(givenSessions)) {
            for (const std::string& id : suggestion.sessionIds)
                suggestedFolders[id] = suggestion.directory;
        }
    }

    Place placeOf(const Session& session) const {
        if (rules.summarizesSelfDriven && isSummarised(session)) {
            return {Rank::selfDriven,
                    {.key = std::string(selfDrivenGroupKey),
                     .title = localised("Selbstgesteuerte Sitzungen"_text),
                     .beginsFolded = true}};
        }
        Place place = ordinaryPlace(session);
        if (place.group.key.empty()) place.group.key = session.groupKey(rules.groupMode);
        return place;
    }

private:
    Place ordinaryPlace(const Session& session) const {
        switch (rules.groupMode) {
            case GroupMode::status:
                return {Rank::ordinary, {.title = label(session.state)}, session.state};
            case GroupMode::application:
                if (session.hostApp) return titled(printable(*session.hostApp));
                if (session.hostBundleId) return titled(printable(*session.hostBundleId));
                return rest(localised("Fenster unbekannt"_text));
            case GroupMode::project:
                if (!session.cwd) return rest(localised("Ohne Projekt"_text));
                return titled(session.projectName(), session.displayPath(home));
            case GroupMode::tool:
                return titled(session.agent.label());
            case GroupMode::federation:
                return federationPlace(session);
        }
        return {};
    }

    Place federationPlace(const Session& session) const {
        if (session.federationId) {
            return titled(localisedFormat("Verbund %@"_text, printable(*session.federationId)));
        }
        const auto suggested = suggestedFolders.find(session.id);
        if (suggested == suggestedFolders.end()) return rest(localised("Ohne Verbund"_text));
        Place place =
            titled(localisedFormat("Vorschlag: gemeinsam in %@"_text, session.projectName()),
                   session.displayPath(home));
        place.rank = Rank::suggestion;
        place.group.key = "@vorschlag:" + suggested->second;
        return place;
    }

    static Place titled(std::string title, std::string detail = {}) {
        return {Rank::ordinary, {.title = std::move(title), .detail = std::move(detail)}};
    }
    static Place rest(std::string title) { return {Rank::rest, {.title = std::move(title)}}; }

    const ListRules& rules;
    const std::string& home;
    std::map<std::string, std::string> suggestedFolders;  ///< by session id
};

/// What a mode but `status` sorts by: favourites first, then the name or the figure, negative where
/// the largest comes first.
struct SortKey {
    bool isOrdinary = false;
    std::string name;
    double figure = 0;

    auto operator<=>(const SortKey&) const = default;
};

SortKey sortKey(const Session& session, SortMode mode) {
    SortKey key{.isOrdinary = !session.isFavorite};
    if (mode == SortMode::name) key.name = caseFolded(session.displayName());
    if (mode == SortMode::activity && session.lastActivityAt) {
        key.figure = -secondsSince1970(*session.lastActivityAt);
    }
    if (mode == SortMode::context) key.figure = -session.contextFill({}).value_or(-1);
    return key;
}

/// Sorts indices by the mode; what it leaves equal goes by Session::precedes.
void sortMembers(std::vector<std::size_t>& members, const std::vector<Session>& sessions,
                 SortMode mode) {
    std::map<std::size_t, SortKey> keys;
    for (const std::size_t member : members) {
        if (mode != SortMode::status) keys[member] = sortKey(sessions[member], mode);
    }
    std::sort(members.begin(), members.end(), [&](std::size_t left, std::size_t right) {
        if (!keys.empty() && keys.at(left) != keys.at(right)) return keys.at(left) < keys.at(right);
        return Session::precedes(sessions[left], sessions[right]);
    });
}

}  // namespace

std::vector<SessionGroup> buildGroups(const std::vector<Session>& sessions, const ListRules& rules,
                                      Date now, Calendar calendar, const std::string& home) {
    const Grouping grouping(sessions, rules, home);
    const auto words = searchWords(rules.search);
    std::map<std::string, Place> places;
    for (std::size_t index = 0; index < sessions.size(); ++index) {
        const Session& session = sessions[index];
        if (!passesAny(session, rules.filters)) continue;
        if (!words.empty() && !holdsAll(searchableText(session, rules, now, calendar), words))
            continue;
        Place place = grouping.placeOf(session);
        const std::string key = place.group.key;
        places.try_emplace(key, std::move(place)).first->second.group.members.push_back(index);
    }
    std::vector<Place> ordered;
    for (auto& [key, place] : places) {
        sortMembers(place.group.members, sessions, rules.sortMode);
        if (place.group.beginsFolded) {
            place.group.detail = stateSummary(sessions, place.group.members);
        }
        ordered.push_back(std::move(place));
    }
    std::sort(ordered.begin(), ordered.end(), comesBefore);
    std::vector<SessionGroup> groups;
    for (Place& place : ordered)
        groups.push_back(std::move(place.group));
    return groups;
}

std::vector<SessionGroup> buildGlance(const std::vector<Session>& sessions) {
    std::vector<SessionGroup> groups{
        {.key = "@attention", .title = localised("Braucht dich"_text)},
        {.key = "@working", .title = localised("Arbeitet"_text)},
        {.key = "@ready", .title = localised("Bereit"_text)},
        {.key = "@dormant", .title = localised("Ruhend"_text), .beginsFolded = true},
    };
    for (std::size_t index = 0; index < sessions.size(); ++index) {
        const SessionState state = sessions[index].state;
        const std::size_t place = demandsAttention(state)          ? 0
                                  : isBusy(state)                  ? 1
                                  : state != SessionState::dormant ? 2
                                                                   : 3;
        groups[place].members.push_back(index);
    }
    std::erase_if(groups, [](const SessionGroup& group) { return group.members.empty(); });
    return groups;
}

std::string stateSummary(const std::vector<Session>& sessions,
                         const std::vector<std::size_t>& members) {
    std::map<SessionState, std::size_t> counts;
    for (const std::size_t member : members)
        ++counts[sessions[member].state];
    std::string summary;
    for (const auto& [state, count] : counts) {
        if (!summary.empty()) summary += " · ";
        summary += fmt::format("{} {}", count, shortLabel(state));
    }
    return summary;
}

}  // namespace fleetwise
