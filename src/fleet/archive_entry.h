#pragma once

#include "fleet/session.h"
#include "foundation/date.h"
#include "foundation/file_stamp.h"
#include "session/session_agent.h"
#include "session/session_origin.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace fleetwise {

/// A text as entries have it: printable, on one line with single blanks, at most 400 characters.
std::string archiveText(std::string_view text);

/// A session of the archive: a plain value. Title and prompt are as archiveText has them.
struct ArchiveEntry {
    std::string id;
    SessionAgent agent;
    SessionOrigin origin = SessionOrigin::unknown;
    std::string title;   ///< given by the user or the agent; may be empty
    std::string prompt;  ///< the latest that is known of the user's; may be empty
    std::string cwd;     ///< may be empty
    std::optional<std::string> model;
    Date lastActivityAt;
    std::uint64_t sizeBytes = 0;  ///< of the transcript or rollout
    std::string path;             ///< of that file; empty where only metadata is left
    FileStamp stamp;              ///< of that file when it was listed
    bool isComplete = false;      ///< its title and prompt have been looked for
    /// What searches look through, in lower case; begins with the name. Empty until it is made.
    std::string searchText;

    bool operator==(const ArchiveEntry&) const = default;

    /// The title, the prompt (80 characters), the last folder of `cwd`, or the first 8 characters
    /// of the id.
    std::string displayName() const;

    /// The last folder of `cwd`; empty where none is known.
    std::string projectName() const;

    void makeSearchText();

    /// As far as resuming it needs: id, agent, folder, title, model, state `dormant`.
    Session asSession() const;
};

}  // namespace fleetwise
