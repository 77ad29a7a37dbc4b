#pragma once

#include <fmt/format.h>

#include <string>
#include <string_view>

namespace fleetwise::testing {

/// A record of a reply: one request of `model` with this many tokens of output.
inline std::string usageRecord(std::string_view request, int output,
                               std::string_view model = "claude-opus-5-5",
                               std::string_view time = "2026-11-21T10:00:00.000Z") {
    return fmt::format(R"({{"type":"assistant","requestId":"{}","timestamp":"{}","message":)"
                       R"({{"model":"{}","usage":{{"output_tokens":{}}}}}}})"
                       "\n",
                       request, time, model, output);
}

inline std::string tokenCount(int input, int cached, int output, int written = 0) {
    return fmt::format(R"({{"timestamp":"2026-11-21T10:00:00.000Z","type":"event_msg","payload":)"
                       R"({{"type":"token_count","info":{{"total_token_usage":{{"input_tokens":{},)"
                       R"("cached_input_tokens":{},"cache_write_input_tokens":{},)"
                       R"("output_tokens":{},"reasoning_output_tokens":1}}}}}}}})"
                       "\n",
                       input, cached, written, output);
}

}  // namespace fleetwise::testing
