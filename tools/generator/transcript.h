#pragma once

#include "generator/books.h"
#include "generator/filler.h"
#include "generator/output_file.h"
#include "generator/random.h"
#include "generator/transcript_history.h"

#include <cstdint>
#include <string>

namespace fleetwise::generator {

/// How a transcript ends.
enum class TranscriptEnding {
    answered,     ///< the last turn is complete
    toolPending,  ///< a tool has been called and has not answered
    failed,       ///< the last turn ended with an error record
};

struct TranscriptShape {
    std::int64_t bytes = 0;  ///< about how large it becomes; at least one turn is written
    TranscriptEnding ending = TranscriptEnding::answered;
    std::string pendingTool;                     ///< which tool toolPending has called
    std::string agentId;                         ///< not empty in the transcript of a subagent
    const TranscriptHistory* history = nullptr;  ///< of a fork, whose book has it already
};

/// Writes the transcript of the session that `book` describes by its first fields (id, cwd, path,
/// dates, entrypoint, permission mode, title, branch) and adds to its counts.
tl::expected<void, GeneratorError> writeTranscript(SessionBook& book, const TranscriptShape& shape,
                                                   Random& random, const Filler& filler);

}  // namespace fleetwise::generator
