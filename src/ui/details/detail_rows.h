#pragma once

#include "cost/cost_figures.h"
#include "fleet/session.h"
#include "fleet/session_details.h"
#include "reactions/state_timeline.h"
#include "ui/details/detail_row.h"
#include "ui/details/timeline_bar.h"

#include <QString>

#include <string>
#include <vector>

namespace fleetwise {

class FleetMonitor;

// What the details tell of a session, as rows in the interface language. Empty where there is
// nothing to tell.

/// "Claude Code · Opus 5.5 · kitty · main" and what else tells this session from others.
QString sessionFacts(const FleetMonitor& monitor, const Session& session);

/// "Arbeitet seit 5 min"; of an ended one how long ago it was active.
QString stateText(const Session& session, Date now);

std::vector<DetailRow> taskRows(const std::vector<SessionDetails::Task>& tasks);

/// What runs beside the session, what of it failed, and when it wakes up.
std::vector<DetailRow> backgroundRows(const Session& session, Date now, Calendar calendar);

/// `running` of them are at work.
std::vector<DetailRow> subagentRows(const std::vector<SessionDetails::Subagent>& subagents,
                                    std::int64_t running, Date now);

/// For how long the session was in which state, the most urgent first.
std::vector<DetailRow> durationRows(const std::vector<TimelineSpan>& spans);

/// How full the context is.
std::vector<DetailRow> contextRows(const Session& session);

/// What the transcript counts.
std::vector<DetailRow> countRows(const Session& session);

/// The sum, and what each model was used for, the largest first.
std::vector<DetailRow> costRows(const FleetMonitor& monitor, const std::string& sessionId);

/// The goal with its progress and limits.
std::vector<DetailRow> goalRows(const FleetMonitor& monitor, const std::string& sessionId);

/// Path, transcript, id and `resumeText`, the command that resumes the session; each to be copied.
std::vector<DetailRow> placeRows(const Session& session, const SessionDetails& details,
                                 const std::string& resumeText, const std::string& home);

/// How many of the sessions are in which state.
std::vector<DetailRow> stateRows(const std::vector<const Session*>& sessions);

/// What the sessions cost together.
std::vector<DetailRow> sumRows(const FleetMonitor& monitor, const std::vector<std::string>& ids);

}  // namespace fleetwise
