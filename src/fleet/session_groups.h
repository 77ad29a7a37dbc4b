#pragma once

#include "fleet/list_rules.h"
#include "fleet/session.h"

#include <cstddef>
#include <string>
#include <vector>

namespace fleetwise {

/// Sessions that stand together under one heading.
struct SessionGroup {
    std::string key;     ///< Session::groupKey, or a key of its own for summaries and suggestions
    std::string title;   ///< in the interface language
    std::string detail;  ///< more about it, such as the project's path; may be empty
    bool beginsFolded = false;         ///< its heading stands for its sessions until it is opened
    std::vector<std::size_t> members;  ///< indices into the sessions, in order; never empty

    bool operator==(const SessionGroup&) const = default;
};

/// The key of the group of self-driven sessions.
inline constexpr std::string_view selfDrivenGroupKey = "@selfDriven";

/// The sessions that the rules show, each in exactly one group. Groups by status come in the order
/// of states; all others by title, with those that hold the rest last: suggested federations,
/// sessions without what is grouped by, and self-driven ones. `home` shortens paths.
std::vector<SessionGroup> buildGroups(const std::vector<Session>& sessions, const ListRules& rules,
                                      Date now, Calendar calendar, const std::string& home);

/// All sessions by what they mean to the user at a glance: who needs them, who works, who is ready,
/// and, folded, who rests. In the order of `sessions`; a group without any is left out.
std::vector<SessionGroup> buildGlance(const std::vector<Session>& sessions);

/// How many sessions of a list are in which state, in words and the most urgent first:
/// "2 Arbeitet · 1 Bereit".
std::string stateSummary(const std::vector<Session>& sessions,
                         const std::vector<std::size_t>& members);

}  // namespace fleetwise
