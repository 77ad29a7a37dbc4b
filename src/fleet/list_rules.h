#pragma once

#include "fleet/session.h"

#include <array>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>

namespace fleetwise {

/// The order of sessions within a group; favourites come first in each.
enum class SortMode {
    status,    ///< Session::precedes
    name,      ///< by display name
    activity,  ///< the latest first
    context,   ///< the fullest first
};

/// What the list is narrowed to. Several filters show what any of them shows.
enum class ListFilter { attention, working, dormant };

inline constexpr std::array allGroupModes{GroupMode::status, GroupMode::application,
                                          GroupMode::project, GroupMode::tool,
                                          GroupMode::federation};
inline constexpr std::array allSortModes{SortMode::status, SortMode::name, SortMode::activity,
                                         SortMode::context};
inline constexpr std::array allListFilters{ListFilter::attention, ListFilter::working,
                                           ListFilter::dormant};

/// The names in the settings: the enumerators' own.
std::string_view rawValue(GroupMode mode);
std::string_view rawValue(SortMode mode);
std::string_view rawValue(ListFilter filter);

/// In the interface language.
std::string label(GroupMode mode);
std::string label(SortMode mode);
std::string label(ListFilter filter);

/// What the list shows, and how.
struct ListRules {
    GroupMode groupMode = GroupMode::status;
    SortMode sortMode = SortMode::status;
    std::set<ListFilter> filters;  ///< none: everything
    /// Words of which a session must hold every one, in any case, in its name, path, branch,
    /// host application, model, agent, state, detail, last message or goal.
    std::string search;
    std::map<std::string, std::string> objectives;  ///< of goals, by session id; to be searched
    bool summarizesSelfDriven = false;  ///< into a group of their own that begins folded
};

}  // namespace fleetwise
