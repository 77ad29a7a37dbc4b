#pragma once

#include "foundation/file_stamp.h"
#include "usage/usage_history_store.h"
#include "usage/usage_sample.h"

#include <memory>
#include <mutex>
#include <optional>
#include <string>

namespace fleetwise {

/// What is read of ~/.claude.json, and nothing else of it: the plan, at the top level or below
/// "oauthAccount", and the quota figures that Claude Code was told last ("cachedUsageUtilization").
struct ClaudeConfiguration {
    std::optional<std::string> organizationType;  ///< "claude_max", "claude_pro" …
    std::optional<std::string> rateLimitTier;     ///< "default_claude_max_20x" …
    std::optional<bool> hasExtraUsage;
    std::optional<UsageSample> utilization;  ///< dated by its fetch
    ToldWindowEnds ends;                     ///< told with it

    bool operator==(const ClaudeConfiguration&) const = default;

    /// Nothing where the text is not one JSON object.
    static std::optional<ClaudeConfiguration> parse(std::string_view padded);
};

/// Reads the file again only where it has changed. Any thread.
class ClaudeConfigurationReader {
public:
    /// Empty where the file is missing, unreadable or damaged.
    ClaudeConfiguration read(const std::string& path);

private:
    std::mutex lock;
    std::string knownPath;
    std::optional<FileStamp> knownStamp;
    ClaudeConfiguration known;
};

}  // namespace fleetwise
