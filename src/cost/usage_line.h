#pragma once

#include "cost/line_search.h"
#include "cost/session_cost.h"
#include "foundation/json_reader.h"

#include <array>
#include <optional>
#include <string_view>
#include <vector>

namespace fleetwise {

/// One line of a Claude Code transcript, as far as money is concerned: a reply with what it used
/// ("type" "assistant", "message" with "usage"), or the agent's report of what it billed so far
/// ("type" "cost-state"). Views live until the reader's next text.
struct UsageLine {
    /// A reply. One request writes several, with the same key.
    struct Reply {
        std::optional<std::string_view> key;  ///< "requestId", else the message's "id"
        std::string_view model;               ///< empty where none is named
        std::optional<std::string_view> effort;
        std::optional<std::string_view> timestamp;
        TokenTally tally;
    };

    /// Replaces earlier ones: it covers the session so far.
    struct Bill {
        std::optional<double> totalUSD;
        std::vector<BilledSlice> models;  ///< ascending by id
    };

    std::optional<Reply> reply;
    std::optional<Bill> bill;

    /// A line that matters holds one of these.
    static constexpr std::array marks{LineMark("\"output_"), LineMark("\"cost-state\"")};

    /// Reads one line that is followed by jsonPadding readable bytes. What is no such record, or no
    /// JSON object at all, has neither.
    static UsageLine parse(JsonReader& json, std::string_view line);
};

}  // namespace fleetwise
