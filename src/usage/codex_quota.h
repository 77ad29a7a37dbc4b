#pragma once

#include "foundation/date.h"
#include "sources/file_cache.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace fleetwise {

/// One of Codex's quota windows, as a rollout tells it: {"type": "token_count", "rate_limits":
/// {"primary" and "secondary": {"used_percent", "window_minutes", "resets_at" in s}, "plan_type"}}.
struct CodexQuota {
    int usedPercent = 0;             ///< 0 … 100
    std::int64_t windowMinutes = 0;  ///< length of the window; 0: unknown
    std::optional<Date> resetsAt;
    std::optional<std::string> planType;
    std::optional<Date> observedAt;

    bool operator==(const CodexQuota&) const = default;

    /// The latest record among the lines, its primary window; nothing without one.
    static std::optional<CodexQuota> parse(const std::vector<std::string>& lines);

    /// "5-Stunden-Fenster", "90-Minuten-Fenster", "Fenster unbekannt".
    std::string windowLabel() const;

    /// The window has begun anew since: its percentage says nothing any more.
    bool hasReset(Date now) const { return resetsAt && *resetsAt <= now; }

    /// Observed longer ago than the window lasts (five hours where that is not known), or nobody
    /// knows when.
    bool isStale(Date now) const;
};

/// All that one record of Codex tells about its limits.
struct CodexLimits {
    struct Credits {
        bool hasCredits = false;
        bool isUnlimited = false;
        std::optional<double> balance;  ///< no currency is told

        bool operator==(const Credits&) const = default;
    };

    std::vector<CodexQuota> windows;  ///< the shortest first, one of unknown length last
    std::optional<Credits> credits;
    std::optional<std::string> planType;
    std::optional<Date> observedAt;

    bool operator==(const CodexLimits&) const = default;

    /// The latest record among the lines; nothing without one.
    static std::optional<CodexLimits> parse(const std::vector<std::string_view>& lines);
};

/// Codex's limits by the latest record over its newest rollouts, each read again only where it has
/// changed, and then only its end. Any thread.
class CodexLimitsReader {
public:
    /// How many rollouts are looked at: those written to last.
    static constexpr std::size_t newestRollouts = 12;

    /// Records dated after `now` do not count; those without a date are ordered by their file's.
    std::optional<CodexLimits> read(const std::string& codexDirectory, Date now = Date::max());

private:
    FileCache<CodexLimits> limits;
};

}  // namespace fleetwise
