#pragma once

#include "cost/transcript_reader.h"
#include "fleet/session.h"
#include "fleet/session_details.h"

#include <cstddef>
#include <string>

namespace fleetwise {

/// Reads what is shown of one session beyond its row, from the agent's files. What cannot be read
/// is left out. Any thread.
class SessionDetailsReader {
public:
    /// Prompts and messages are cut to this many characters.
    static constexpr std::size_t longestText = 4000;

    /// Both readers outlive this.
    SessionDetailsReader(TranscriptReader& givenTranscripts, TaskListStore& givenTasks,
                         std::string givenCodexDirectory);

    SessionDetails read(const Session& session) const;

private:
    void readTranscript(const Session& session, SessionDetails& details) const;
    void readRollout(const Session& session, SessionDetails& details) const;

    TranscriptReader& transcripts;
    TaskListStore& tasks;
    std::string codexDirectory;
};

}  // namespace fleetwise
