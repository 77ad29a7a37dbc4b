#pragma once

#include "foundation/date.h"
#include "foundation/regular_file.h"
#include "session/session_state.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace fleetwise {

/// What the end of a rollout tells. Of every figure the last one in the file counts; one that the
/// part read does not hold is nothing.
struct RolloutTail {
    std::optional<SessionState> state;  ///< by the last task event
    std::optional<Date> stateSince;     ///< the time of that event
    std::optional<Date> turnStartedAt;
    std::optional<Date> lastEventAt;
    std::optional<std::int64_t> contextTokens;  ///< of the last request
    std::optional<std::int64_t> outputTokens;   ///< of all requests
    std::optional<std::int64_t> contextWindow;  ///< in tokens
    std::optional<std::string> activity;        ///< what was done last in the turn that runs
    std::optional<std::string> model;
    std::optional<std::string> effort;
    std::optional<std::string> lastReply;
    std::optional<std::string> failure;  ///< of the last turn, where that failed

    bool operator==(const RolloutTail&) const = default;

    /// How many bytes are read at a time, from the end of the file backwards.
    static constexpr std::uint64_t window = 262'144;
    /// How far back a task event is looked for.
    static constexpr std::uint64_t longestSearch = 4 << 20;

    struct Reading;

    /// Reads the file from its end back to `begin`, which is the start of a line, or until a
    /// window held a task event, or as far as is searched.
    static tl::expected<Reading, FileError> read(const RegularFile& file, std::uint64_t begin);

    /// What the whole lines in `padded` tell, which jsonPadding readable bytes must follow.
    static RolloutTail parse(std::string_view padded);

    /// This, brought up to date by what stands behind it in the file.
    RolloutTail followedBy(RolloutTail later) const;
};

struct RolloutTail::Reading {
    RolloutTail tail;
    std::uint64_t nextLine = 0;  ///< offset of the first line that was not whole yet
};

}  // namespace fleetwise
