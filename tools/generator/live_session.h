#pragma once

#include "generator/books.h"
#include "generator/output_file.h"
#include "generator/plan.h"
#include "generator/random.h"
#include "generator/transcript.h"

#include <string>
#include <string_view>

namespace fleetwise::generator {

/// A situation a live session can be in: what the hook last recorded of it, what the agent's own
/// registry says at the same time, and what follows from both.
struct Situation {
    std::string_view shown;     ///< the raw SessionState a reader must arrive at
    std::string_view recorded;  ///< "state" of the status record; empty: the hook wrote none
    std::string_view event;
    std::string_view registryStatus;
    std::string_view waitingFor;  ///< in the registry; may be empty
    std::string_view tool;        ///< called and not answered; may be empty
    std::string_view message;     ///< may be empty
    int subagents = 0;
    TranscriptEnding ending = TranscriptEnding::answered;
};

/// The situation of the live session number `index`: they take turns, so that a handful of
/// sessions shows all of them.
const Situation& situationOf(int index);

/// The situation of a session whose last turn ended with an error.
const Situation& failedSituation();

/// Where a home keeps what belongs to one session.
struct SessionFiles {
    std::string registry;
    std::string status;
};

/// Writes the registry entry and, where there is one, the status record of a live session.
/// `book.lastActivityAt` is the time of its last event.
tl::expected<void, GeneratorError> writeLiveSession(const SessionBook& book,
                                                    const Situation& situation,
                                                    const SessionFiles& files, const Plan& plan,
                                                    Random& random);

/// Writes the status record that the hook leaves behind for an ended session.
tl::expected<void, GeneratorError> writeEndedSession(const SessionBook& book,
                                                     const SessionFiles& files);

}  // namespace fleetwise::generator
