#include "fleet/registry_correction.h"

namespace fleetwise {

namespace {

constexpr Seconds settlingTime{1};

bool isPending(SessionState state) {
    return state == SessionState::decision || state == SessionState::waiting;
}

/// What the user is asked for; nothing for dialogs that the user opened.
std::optional<SessionState> askedState(const SessionRegistry::Entry& entry) {
    if (entry.status != "waiting") return {};
    if (entry.waitingFor == "permission prompt") return SessionState::waiting;
    if (entry.waitingFor == "input needed") return SessionState::decision;
    return {};
}

/// The state where only the registry speaks.
SessionState registryState(const SessionRegistry::Entry& entry) {
    if (entry.status == "busy") return SessionState::working;
    if (entry.status == "idle" || entry.status == "shell") return SessionState::idle;
    if (entry.status == "waiting") return askedState(entry).value_or(SessionState::idle);
    return SessionState::unknown;
}

/// The state that a newer word of the registry makes of a recorded one.
SessionState correctedState(SessionState recorded, const SessionRegistry::Entry& entry) {
    const bool saysIdle = entry.status == "idle";
    const bool saysBusy = entry.status == "busy";
    if (recorded == SessionState::unknown || recorded == SessionState::dormant) {
        const SessionState told = registryState(entry);
        return told == SessionState::unknown ? recorded : told;
    }
    if (isPending(recorded)) {
        if (saysBusy) return SessionState::working;
        return saysIdle ? SessionState::idle : recorded;
    }
    if (const auto asked = askedState(entry)) return *asked;
    if (isBusy(recorded)) return saysIdle ? SessionState::idle : recorded;
    return saysBusy ? SessionState::working : recorded;
}

}  // namespace

StateFinding reconciledState(std::optional<SessionState> recorded, std::optional<Date> recordedAt,
                             const SessionRegistry::Entry& entry, Date now) {
    if (!recorded) {
        return {.state = registryState(entry), .toldByRegistryAt = entry.statusUpdatedAt};
    }
    StateFinding finding{.state = *recorded};
    const auto& updatedAt = entry.statusUpdatedAt;
    if (!updatedAt || (recordedAt && *updatedAt <= *recordedAt)) return finding;
    const SessionState corrected = correctedState(*recorded, entry);
    if (corrected == *recorded) return finding;
    if (now >= *updatedAt && now - *updatedAt < settlingTime) {
        finding.isUnsettled = true;
        return finding;
    }
    return {.state = corrected, .toldByRegistryAt = updatedAt};
}

}  // namespace fleetwise
