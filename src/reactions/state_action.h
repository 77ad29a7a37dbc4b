#pragma once

#include "foundation/json.h"
#include "session/session_state.h"

#include <tl/expected.hpp>

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace fleetwise {

/// Why a state action cannot run.
struct StateActionError {
    enum class Kind {
        notAbsolute,
        missing,
        notExecutable,
        empty,
        notConfirmed,
        unbalancedQuote,
    };

    Kind kind = Kind::empty;
    std::string path;  ///< of the first three kinds: the first word of the command

    bool operator==(const StateActionError&) const = default;

    /// In the interface language.
    std::string text() const;
};

/// A program that the user has run whenever a session enters a state. It runs only as long as the
/// user has released exactly this command.
struct StateAction {
    struct Plan {
        std::string executable;  ///< a full path
        std::vector<std::string> arguments;

        bool operator==(const Plan&) const = default;
    };

    struct FileState {
        bool exists = false;
        bool isExecutable = false;  ///< a regular file that this user may run
    };
    using FileSystem = std::function<FileState(const std::string& path)>;

    std::string id;  ///< a UUID
    SessionState state = SessionState::waiting;
    std::string command;                   ///< as typed
    std::optional<std::string> confirmed;  ///< the fingerprint of what was released

    bool operator==(const StateAction&) const = default;

    /// The words of a command line. Blanks and tabs part them; a pair of double or single quotes
    /// takes everything between literally, and makes a word even when empty. There is no escape
    /// character.
    static tl::expected<std::vector<std::string>, StateActionError> split(std::string_view command);

    /// SHA-256 of the text (FIPS 180-4) as 64 lower-case hexadecimal digits; empty, which releases
    /// nothing, where the system does not offer it.
    static std::string fingerprint(std::string_view command);

    bool isArmed() const;
    /// The same, released by the user.
    StateAction armed() const;

    /// What is to be started; or the first thing that stands in the way.
    tl::expected<Plan, StateActionError> plan(const FileSystem& fileSystem) const;

    /// The machine's own files.
    static FileState lookAtDisk(const std::string& path);

    /// The whole environment of the program: FLEETWISE_STATE, and FLEETWISE_SESSION where the id
    /// is fit for one: not empty, UTF-8, no control characters, at most 256 bytes.
    static std::map<std::string, std::string> environment(SessionState state,
                                                          const std::string& sessionId);

    /// The setting `stateActions`: an array of objects with the keys `id`, `state`, `command` and
    /// `confirmed`, or its text. Entries that are none are skipped.
    static std::vector<StateAction> decode(const Json& setting);

    /// The text for the setting, with the keys in that order.
    static std::string encode(const std::vector<StateAction>& actions);
};

}  // namespace fleetwise
