#pragma once

#include "foundation/date.h"
#include "foundation/skip_tally.h"
#include "session/session_origin.h"
#include "sources/desktop_metadata.h"
#include "sources/transcript_file.h"

#include <optional>
#include <set>
#include <string>
#include <vector>

namespace fleetwise {

/// The sessions of Claude Code that have left something behind, running or not. No file is opened.
class SessionHistory {
public:
    struct Candidate {
        std::string sessionId;
        std::optional<std::string> cwd;
        std::optional<std::string> title;
        std::optional<std::string> model;
        std::optional<std::string> effort;
        Date lastActivityAt;  ///< 1970-01-01 where nothing tells
        SessionOrigin origin = SessionOrigin::unknown;
        std::optional<TranscriptFile> transcript;

        bool operator==(const Candidate&) const = default;
    };

    /// Every session transcript in the folders of `projectsDirectory`. Of two for one session the
    /// one modified later counts. Transcripts of subagents are none of a session; links, folders,
    /// empty files and the like are counted in `skipped`.
    static TranscriptIndex transcripts(const std::string& projectsDirectory, SkipTally& skipped);

    /// The sessions last active within `maxAge` (absent: all; zero: none), and each of
    /// `alwaysInclude` of which there is a transcript or metadata. One that is archived in the
    /// desktop app is listed only by the latter. Newest first, then by id.
    static std::vector<Candidate> candidates(std::optional<Seconds> maxAge,
                                             const DesktopSessions& desktopMeta,
                                             const std::set<std::string>& alwaysInclude,
                                             const TranscriptIndex& transcripts, Date now);
};

}  // namespace fleetwise
