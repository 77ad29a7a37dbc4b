// Any bytes as the desktop app's usage history, Claude Code's configuration and a rollout line:
// figures within their bounds, or none.

#include "foundation/json_reader.h"
#include "usage/claude_configuration.h"
#include "usage/codex_quota.h"
#include "usage/usage_history_store.h"

#include <algorithm>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace fleetwise;
    std::string text(data, data + size);
    text.reserve(size + jsonPadding);
    const UsageSamples samples = UsageHistoryStore::decode(text).value_or(UsageSamples());
    const auto isSound = [](const std::optional<int>& percent) {
        return !percent || (*percent >= 0 && *percent <= 10'000);
    };
    for (const UsageSample& sample : samples) {
        if (!isSound(sample.fiveHour) || !isSound(sample.sevenDay)) __builtin_trap();
    }
    if (!std::is_sorted(samples.begin(), samples.end(), [](const auto& left, const auto& right) {
            return left.date < right.date;
        })) {
        __builtin_trap();
    }
    const auto configuration = ClaudeConfiguration::parse(text);
    if (configuration && configuration->utilization &&
        !isSound(configuration->utilization->fiveHour)) {
        __builtin_trap();
    }
    const auto limits = CodexLimits::parse({text});
    if (limits && limits->windows.empty()) __builtin_trap();
    return 0;
}
