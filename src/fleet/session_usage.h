#pragma once

#include "cost/cost_figures.h"
#include "fleet/figure_table.h"
#include "fleet/usage_sources.h"
#include "fleet/usage_tables.h"

#include <array>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace fleetwise {

/// One session of the table of all.
struct SessionUsage {
    std::string id;
    std::string name;
    std::string folder;  ///< may be empty
    SessionAgent agent;
    std::string model;  ///< of the latest request, as shown; may be empty
    CostFigures figures;
    std::optional<Date> lastActivityAt;

    bool operator==(const SessionUsage&) const = default;
};

/// All sessions that have used anything, by id. Threads that Codex started have no row of their
/// own, unless they are listed or in the archive. `figures` tells what a session comes to, a Codex
/// session with the threads it started: the rows together may come to more than the whole.
std::vector<SessionUsage> sessionUsages(
    const UsageSources& sources, const std::function<CostFigures(const std::string& id)>& figures);

enum class SessionColumn {
    name,
    project,
    agent,
    model,
    requests,
    input,
    output,
    cache,
    cost,
    lastActivity,
};

inline constexpr std::array allSessionColumns{SessionColumn::name,     SessionColumn::project,
                                              SessionColumn::agent,    SessionColumn::model,
                                              SessionColumn::requests, SessionColumn::input,
                                              SessionColumn::output,   SessionColumn::cache,
                                              SessionColumn::cost,     SessionColumn::lastActivity};

bool isWanted(SessionColumn column, UsageColumns columns);
std::string headingOf(SessionColumn column);
/// Whether its cells are figures or dates.
bool isFigure(SessionColumn column);

/// By what cells are told.
struct SessionCellRules {
    MoneyBasis basis = MoneyBasis::billed;
    Calendar calendar = nullptr;
    std::string home;  ///< shortens paths
};

/// By what a column of figures is sorted: the figure itself, a date as seconds since 1970; nothing
/// where it is not known.
std::optional<double> figureOf(const SessionUsage& session, SessionColumn column, MoneyBasis basis);

/// As figureOf has it, in words; what is no figure has none.
FigureTable::Cell cellOf(const SessionUsage& session, SessionColumn column,
                         const SessionCellRules& rules);

/// The sessions in the order given, with the whole path of each project.
FigureTable sessionUsageTable(const std::vector<SessionUsage>& sessions, UsageColumns columns,
                              const SessionCellRules& rules);

}  // namespace fleetwise
