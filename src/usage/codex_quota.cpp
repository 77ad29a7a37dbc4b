#include "usage/codex_quota.h"

#include "foundation/json_reader.h"
#include "foundation/text.h"
#include "localisation/localisation.h"
#include "sources/codex_store.h"
#include "sources/rollout_line.h"
#include "usage/file_tail.h"
#include "usage/percent.h"
#include "usage/plausible_date.h"
#include "usage/quota_window.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <tuple>

namespace fleetwise {

namespace {

constexpr std::string_view limitsMark = "\"rate_limits\"";
constexpr std::size_t tailSize = 262'144;

/// One record, with its windows by their slots.
struct Record {
    std::optional<CodexQuota> primary;
    std::optional<CodexQuota> secondary;
    std::optional<CodexLimits::Credits> credits;
    std::optional<std::string> planType;
    std::optional<Date> observedAt;
};

std::optional<CodexQuota> windowMember(JsonObject& limits, std::string_view key) {
    auto object = memberIfPresent<JsonObject>(limits, key);
    const auto percent = object ? memberIfPresent<double>(*object, "used_percent") : std::nullopt;
    if (!percent) return {};
    const auto minutes = memberIfPresent<std::int64_t>(*object, "window_minutes");
    const auto resetsAt = memberIfPresent<double>(*object, "resets_at");
    return CodexQuota{.usedPercent = std::min(clampedPercent(*percent), 100),
                      .windowMinutes = std::max<std::int64_t>(minutes.value_or(0), 0),
                      .resetsAt = resetsAt ? plausibleDate(*resetsAt) : std::nullopt,
                      .planType = {},
                      .observedAt = {}};
}

/// A number, or a text that is one.
std::optional<double> balanceMember(JsonObject& credits) {
    if (const auto number = memberIfPresent<double>(credits, "balance")) return number;
    const auto text = memberIfPresent<std::string_view>(credits, "balance");
    if (!text) return {};
    const std::string_view digits = trimmed(*text);
    double number = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
    const bool isNumber = error == std::errc() && end == digits.data() + digits.size();
    return isNumber && std::isfinite(number) ? std::optional(number) : std::nullopt;
}

std::optional<CodexLimits::Credits> creditsMember(JsonObject& limits) {
    auto object = memberIfPresent<JsonObject>(limits, "credits");
    if (!object) return {};
    return CodexLimits::Credits{
        .hasCredits = memberIfPresent<bool>(*object, "has_credits").value_or(false),
        .isUnlimited = memberIfPresent<bool>(*object, "unlimited").value_or(false),
        .balance = balanceMember(*object)};
}

/// The line's record; nothing where it is another event or tells of no window.
std::optional<Record> recordIn(JsonReader& json, std::string_view line) {
    if (line.find(limitsMark) == std::string_view::npos) return {};
    std::string copy;
    copy.reserve(line.size() + jsonPadding);
    copy = line;
    std::optional<Record> found;
    forEachRolloutLine(json, copy, [&](const RolloutLine& read) {
        if (memberIfPresent<std::string_view>(read.payload, "type") != "token_count") return;
        auto limits = memberIfPresent<JsonObject>(read.payload, "rate_limits");
        if (!limits) return;
        Record record{.primary = windowMember(*limits, "primary"),
                      .secondary = windowMember(*limits, "secondary"),
                      .credits = creditsMember(*limits),
                      .planType = textMember(*limits, "plan_type"),
                      .observedAt = plausibleDate(parseInternetDate(read.timestamp))};
        for (auto* window : {&record.primary, &record.secondary}) {
            if (!*window) continue;
            (*window)->planType = record.planType;
            (*window)->observedAt = record.observedAt;
        }
        if (record.primary || record.secondary) found = std::move(record);
    });
    return found;
}

template <typename Lines>
std::optional<Record> latestRecord(const Lines& lines) {
    JsonReader json;
    for (auto line = lines.rbegin(); line != lines.rend(); ++line) {
        if (auto record = recordIn(json, *line)) return record;
    }
    return {};
}

bool isShorter(const CodexQuota& left, const CodexQuota& right) {
    const auto key = [](const CodexQuota& quota) {
        return std::tuple(quota.windowMinutes == 0, quota.windowMinutes);
    };
    return key(left) < key(right);
}

/// No windows where the file has no record.
std::shared_ptr<const CodexLimits> limitsAtEnd(const FoundFile& file) {
    const auto tail = readFileTail(file.path, tailSize);
    if (!tail) return nullptr;
    std::vector<std::string_view> lines;
    forEachLine(*tail, [&](std::string_view line) { lines.push_back(line); });
    return std::make_shared<const CodexLimits>(CodexLimits::parse(lines).value_or(CodexLimits()));
}

void keepNewest(std::vector<FoundFile>& files, std::size_t count) {
    const auto end = files.begin() + static_cast<std::ptrdiff_t>(std::min(count, files.size()));
    std::partial_sort(files.begin(), end, files.end(), [](const auto& left, const auto& right) {
        return std::tuple(right.stamp.modifiedNanoseconds, std::string_view(right.path)) <
               std::tuple(left.stamp.modifiedNanoseconds, std::string_view(left.path));
    });
    files.erase(end, files.end());
}

}  // namespace

std::optional<CodexQuota> CodexQuota::parse(const std::vector<std::string>& lines) {
    auto record = latestRecord(lines);
    if (!record) return {};
    return record->primary ? record->primary : record->secondary;
}

std::string CodexQuota::windowLabel() const {
    if (windowMinutes <= 0) return localised("Fenster unbekannt"_text);
    return windowMinutes % 60 == 0 ? localisedFormat("%d-Stunden-Fenster"_text, windowMinutes / 60)
                                   : localisedFormat("%d-Minuten-Fenster"_text, windowMinutes);
}

bool CodexQuota::isStale(Date now) const {
    const Seconds length =
        windowMinutes > 0 ? Seconds(static_cast<double>(windowMinutes) * 60) : fiveHours;
    return !observedAt || now - *observedAt > length;
}

std::optional<CodexLimits> CodexLimits::parse(const std::vector<std::string_view>& lines) {
    auto record = latestRecord(lines);
    if (!record) return {};
    CodexLimits limits{.windows = {},
                       .credits = record->credits,
                       .planType = std::move(record->planType),
                       .observedAt = record->observedAt};
    for (auto* window : {&record->primary, &record->secondary}) {
        if (*window) limits.windows.push_back(**window);
    }
    std::stable_sort(limits.windows.begin(), limits.windows.end(), isShorter);
    return limits;
}

std::optional<CodexLimits> CodexLimitsReader::read(const std::string& codexDirectory, Date now) {
    SkipTally ignored;
    auto files = CodexStore::files(joinPath(codexDirectory, "sessions"), ignored).rollouts;
    keepNewest(files, newestRollouts);
    const auto found =
        limits.load(files, [](const FoundFile& file, const auto&) { return limitsAtEnd(file); });
    std::shared_ptr<const CodexLimits> latest;
    Date latestAt;
    for (std::size_t number = 0; number < files.size(); ++number) {
        if (!found[number] || found[number]->windows.empty()) continue;
        const Date at = found[number]->observedAt.value_or(modificationDate(files[number].stamp));
        if (isOfFuture(at, now) || (latest && at <= latestAt)) continue;
        latest = found[number];
        latestAt = at;
    }
    return latest ? std::optional(*latest) : std::nullopt;
}

}  // namespace fleetwise
