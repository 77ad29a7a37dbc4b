#pragma once

#include "foundation/file_search.h"
#include "foundation/skip_tally.h"
#include "session/session_origin.h"
#include "session/session_state.h"

#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

namespace fleetwise {

struct CodexRollout;
struct RolloutHead;
struct RolloutTail;

/// What Codex leaves behind: a "rollout" per session below ~/.codex/sessions, one JSON object a
/// line, appended to while the session runs, and an index of the names that users gave. Nothing is
/// remembered here; see CodexRollouts for that.
class CodexStore {
public:
    using Rollout = CodexRollout;
    using Head = RolloutHead;
    using Tail = RolloutTail;

    /// Session id to thread name.
    using ThreadNames = std::unordered_map<std::string, std::string>;

    struct Files {
        std::vector<FoundFile> rollouts;    ///< regular files only, in no particular order
        std::vector<FoundFile> compressed;  ///< rollouts that Codex has packed away
    };

    /// Older rollouts are those of sessions long gone.
    static constexpr Seconds maximumAge{2'592'000};

    /// Whether Codex has ever run here.
    static bool isAvailable(const std::string& sessionsDirectory);

    /// The rollouts in the folder and all folders below it; links are counted in `skipped`.
    static Files files(const std::string& sessionsDirectory, SkipTally& skipped);

    /// Whether a file of this name is a rollout that Codex may write to.
    static bool isRolloutName(std::string_view fileName);

    /// The session id in the name of a rollout, "rollout-<time>-<id>.jsonl", packed or not; all
    /// between prefix and extension where no time stands there.
    static std::string idInName(std::string_view fileName);

    /// The names in the text of the session index, which jsonPadding readable bytes must follow.
    /// Of several names of a session the last that is not blank counts.
    static ThreadNames threadNames(std::string_view padded);

    /// The state that an event of this type leads to; nothing for one that changes no state. What
    /// the event carries may still turn the end of a task into a failure.
    static std::optional<SessionState> state(std::string_view eventType);

    /// Whether this Codex client is its desktop app.
    static bool isDesktop(const std::optional<std::string>& originator);

    /// The identifier that macOS knows the session's application by; nothing where the rollout
    /// does not tell, as with the clients for terminals, whatever source they name.
    static std::optional<std::string> hostBundleId(const std::optional<std::string>& originator,
                                                   const std::optional<std::string>& source);

    static std::pair<SessionOrigin, std::optional<std::string>> attribution(const Rollout& rollout);
};

}  // namespace fleetwise
