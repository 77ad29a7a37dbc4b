#pragma once

#include "cost/line_search.h"
#include "cost/local_days.h"
#include "cost/session_cost.h"

#include <array>
#include <cstddef>
#include <string>
#include <string_view>

namespace fleetwise {

/// Adds up what the lines of a Codex rollout tell. It counts running totals ("token_count" events
/// with "total_token_usage"); what each adds goes to the model of the turn it stands in.
class RolloutUsageReader {
public:
    /// A line that matters holds one of these.
    static constexpr std::array marks{LineMark("\"total_token_usage\""),
                                      LineMark("\"turn_context\""), LineMark("\"session_meta\"")};

    explicit RolloutUsageReader(Calendar calendar);

    /// Counts only the first `requests` changes of the total, of those that still count at the end.
    RolloutUsageReader(Calendar calendar, std::size_t requests);

    /// One line, followed by jsonPadding readable bytes.
    void add(std::string_view line);

    /// The thread's id, by its meta line; empty before one was read.
    const std::string& threadId() const { return thread; }

    /// What all lines told. This is used up.
    SessionCost finish();

private:
    void addContext(JsonObject& payload);
    void addEvent(JsonObject& payload, std::string_view timestamp);
    void count(const TokenTally& total, std::string_view timestamp);

    const std::optional<std::size_t> limit;
    LocalDays days;
    JsonReader json;
    std::string thread;
    TokenTally counted;  ///< the running total so far
    SessionCost read;
    std::optional<SessionCost> readToLimit;
};

/// Tokens as Codex counts them, where cached input is part of the input, as we do. The object holds
/// "input_tokens", "cached_input_tokens", "cache_write_input_tokens", "output_tokens" and
/// "reasoning_output_tokens"; absent ones are 0.
TokenTally codexTally(JsonObject& usage);

}  // namespace fleetwise
