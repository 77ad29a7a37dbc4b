#include "usage/claude_configuration.h"

#include "cost/record_walk.h"
#include "foundation/directory.h"
#include "foundation/regular_file.h"
#include "usage/percent.h"
#include "usage/plausible_date.h"

#include <cmath>

namespace fleetwise {

namespace {

constexpr std::size_t largestFile = 16 << 20;
constexpr std::size_t longestName = 128;

struct Plan {
    std::optional<std::string> organizationType;
    std::optional<std::string> rateLimitTier;
    std::optional<bool> hasExtraUsage;
};

/// One window as Claude Code was told it.
struct ToldWindow {
    std::optional<int> percent;
    std::optional<Date> resetsAt;
};

struct ToldUsage {
    std::optional<Date> fetchedAt;
    ToldWindow fiveHour;
    ToldWindow sevenDay;
};

void takeName(JsonValue value, std::optional<std::string>& into) {
    const auto name = textValue(value);
    if (name && !name->empty() && name->size() <= longestName) into = std::string(*name);
}

void readPlanMember(JsonKey key, JsonValue value, Plan& plan) {
    if (key == "organizationType") {
        takeName(value, plan.organizationType);
    } else if (key == "organizationRateLimitTier") {
        takeName(value, plan.rateLimitTier);
    } else if (key == "hasExtraUsageEnabled") {
        plan.hasExtraUsage = scalarValue<bool>(value);
    }
}

bool readWindow(JsonValue value, ToldWindow& window) {
    return walkObjectValue(value, [&](JsonKey key, JsonValue member) {
        if (key == "utilization") {
            const auto percent = scalarValue<double>(member);
            if (percent) window.percent = clampedPercent(*percent);
        } else if (key == "resets_at") {
            const auto text = textValue(member);
            if (text) window.resetsAt = plausibleDate(parseInternetDate(*text));
        }
        return true;
    });
}

bool readUsageMember(JsonKey key, JsonValue value, ToldUsage& usage) {
    if (key == "fetchedAtMs") {
        // To whole milliseconds, as our own file keeps it.
        const auto fetched = scalarValue<double>(value);
        if (fetched) usage.fetchedAt = plausibleDate(std::floor(*fetched) / 1000);
    } else if (key == "utilization") {
        return walkObjectValue(value, [&](JsonKey name, JsonValue window) {
            if (name == "five_hour") return readWindow(window, usage.fiveHour);
            if (name == "seven_day") return readWindow(window, usage.sevenDay);
            return true;
        });
    }
    return true;
}

void adopt(const ToldUsage& usage, ClaudeConfiguration& configuration) {
    if (!usage.fetchedAt) return;
    configuration.ends = {.toldAt = *usage.fetchedAt,
                          .fiveHour = usage.fiveHour.resetsAt,
                          .sevenDay = usage.sevenDay.resetsAt};
    if (!usage.fiveHour.percent && !usage.sevenDay.percent) return;
    configuration.utilization = UsageSample{.date = *usage.fetchedAt,
                                            .fiveHour = usage.fiveHour.percent,
                                            .sevenDay = usage.sevenDay.percent,
                                            .org = {},
                                            .extraUsage = {}};
}

}  // namespace

std::optional<ClaudeConfiguration> ClaudeConfiguration::parse(std::string_view padded) {
    Plan account;
    Plan older;
    ToldUsage usage;
    JsonReader json;
    bool isSound = false;
    const auto readMember = [&](JsonKey key, JsonValue value) {
        if (key == "oauthAccount") {
            return walkObjectValue(value, [&](JsonKey name, JsonValue member) {
                readPlanMember(name, member, account);
                return true;
            });
        }
        if (key == "cachedUsageUtilization") {
            return walkObjectValue(value, [&](JsonKey name, JsonValue member) {
                return readUsageMember(name, member, usage);
            });
        }
        readPlanMember(key, value, older);
        return true;
    };
    const bool isWhole = json.walkObject(
        padded, [&](JsonObject& root) { isSound = forEachMember(root, readMember); });
    if (!isWhole || !isSound) return {};
    ClaudeConfiguration configuration;
    configuration.organizationType =
        account.organizationType ? account.organizationType : older.organizationType;
    configuration.rateLimitTier =
        account.rateLimitTier ? account.rateLimitTier : older.rateLimitTier;
    configuration.hasExtraUsage =
        account.hasExtraUsage ? account.hasExtraUsage : older.hasExtraUsage;
    adopt(usage, configuration);
    return configuration;
}

ClaudeConfiguration ClaudeConfigurationReader::read(const std::string& path) {
    const auto entry = inspectFile(path);
    const bool isFile = entry && entry->kind == FileKind::regular;
    {
        const std::lock_guard guard(lock);
        if (isFile && knownPath == path && knownStamp == entry->stamp) return known;
    }
    const auto contents =
        isFile ? readRegularFile(path, largestFile) : tl::unexpected(FileError::missing);
    const auto parsed = contents ? ClaudeConfiguration::parse(*contents) : std::nullopt;
    const std::lock_guard guard(lock);
    knownPath = path;
    // By the stamp from before the reading: what is written meanwhile changes it.
    knownStamp = contents ? std::optional(entry->stamp) : std::nullopt;
    known = parsed.value_or(ClaudeConfiguration());
    return known;
}

}  // namespace fleetwise
