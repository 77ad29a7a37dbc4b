#pragma once

#include "foundation/date.h"
#include "foundation/regular_file.h"
#include "session/session_state.h"

#include <tl/expected.hpp>

#include <optional>
#include <string>
#include <vector>

namespace fleetwise {

/// A time in which a session waited for the user, in one state.
struct AttentionEpisode {
    std::string sessionId;
    SessionState state = SessionState::waiting;  ///< one that demands attention
    std::optional<std::string> project;          ///< the session's working directory
    Date began;
    Date ended;  ///< not before `began`

    bool operator==(const AttentionEpisode&) const = default;
};

/// Reads {"version": 1, "episodes": [{"sessionId", "state", "project", "began", "ended"}]}, dates
/// in ISO 8601. Damaged entries are left out; a missing file holds none, and one that is too large,
/// damaged or of another version is put aside as "PATH.unreadable". An error where something stands
/// there that could not be read.
tl::expected<std::vector<AttentionEpisode>, FileError> loadAttentionEpisodes(
    const std::string& path);

/// Replaces the file, in that form. Whether it was written.
bool saveAttentionEpisodes(const std::string& path, const std::vector<AttentionEpisode>& episodes);

}  // namespace fleetwise
