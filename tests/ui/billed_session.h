#pragma once

#include "support/temporary_directory.h"

#include <fmt/format.h>

#include <string>

namespace fleetwise::testing {

/// The transcript of a session that asked once, for tokens worth five dollars by the built-in
/// book, and was billed `usd`, where VirtualFleet's costs are read.
inline void writeBilledSession(const TemporaryDirectory& home, const std::string& id, double usd) {
    home.write("projects/-srv/" + id + ".jsonl",
               fmt::format(
                   R"({{"type":"assistant","requestId":"req_{0}","sessionId":"{0}",)"
                   R"("timestamp":"2026-11-21T02:00:00.000Z","message":{{"id":"msg_{0}",)"
                   R"("model":"claude-opus-5-5","role":"assistant","content":[],)"
                   R"("usage":{{"input_tokens":1000000,"output_tokens":0}}}}}})"
                   "\n"
                   R"({{"type":"cost-state","sessionId":"{0}","totalCostUSD":{1},"modelUsage":)"
                   R"({{"claude-opus-5-5":{{"inputTokens":1000000,"outputTokens":0,)"
                   R"("cacheReadInputTokens":0,"cacheCreationInputTokens":0,"webSearchRequests":0,)"
                   R"("costUSD":{1}}}}}}})"
                   "\n",
                   id, usd));
}

}  // namespace fleetwise::testing
