#pragma once

#include "fleet/codex_threads.h"
#include "fleet/registry_correction.h"
#include "fleet/session.h"
#include "sources/desktop_metadata.h"
#include "sources/session_history.h"

namespace fleetwise {

/// What every session of a pass is made with.
struct BuildingRules {
    Date now;
    /// How long a finished or failed session keeps its claim on attention.
    Seconds doneGracePeriod{0};
};

/// A live session from its registry entry, with the hook's record and the desktop app's metadata
/// where there are any (null otherwise). `isUnsettled` is set where the registry and the record
/// contradict each other and the state wants another look a second later; it is never cleared.
Session liveSession(const SessionRegistry::Entry& entry, const StatusStore::Record* record,
                    const DesktopMetadata* desktop, const BuildingRules& rules, bool& isUnsettled);

/// An ended session of the history.
Session dormantSession(const SessionHistory::Candidate& candidate,
                       const StatusStore::Record* record, const DesktopMetadata* desktop);

/// A session that only a status record tells of. A record younger than a day counts as live.
Session foreignSession(const StatusStore::Record& record, const BuildingRules& rules);

/// A Codex session, with the hook's record where Codex runs the hook too (null otherwise). The
/// record tells the state where its event is later than the rollout's last task event, and that the
/// session is live where it asks the user something or is at work; an ended one is `dormant`.
Session codexSession(CodexThread thread, const StatusStore::Record* record,
                     const BuildingRules& rules);

/// Whether the hook says that the user is asked something.
bool asksUser(const StatusStore::Record& record);

/// When the hook last heard of the session.
Date lastEventDate(const StatusStore::Record& record);

}  // namespace fleetwise
