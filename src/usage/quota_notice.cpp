#include "usage/quota_notice.h"

#include "foundation/json_reader.h"
#include "foundation/text.h"
#include "sources/paths.h"
#include "usage/file_tail.h"
#include "usage/plausible_date.h"

namespace fleetwise {

namespace {

constexpr std::string_view blockName = "quotaLimits";
constexpr std::string_view fiveHourKind = "five_hour";
constexpr std::size_t longestKind = 64;

/// A date in seconds since 1970, or as a text.
std::optional<Date> dateMember(JsonObject& object, std::string_view key) {
    if (const auto seconds = memberIfPresent<double>(object, key)) return plausibleDate(*seconds);
    const auto text = memberIfPresent<std::string_view>(object, key);
    return text ? plausibleDate(parseInternetDate(*text)) : std::nullopt;
}

/// {"resetsAt", "rateLimitType"}.
std::optional<QuotaNotice::Notice> lies(JsonObject& block, Date seenAt) {
    const auto resetsAt = dateMember(block, "resetsAt");
    if (!resetsAt) return {};
    QuotaNotice::Notice notice{.resetsAt = *resetsAt, .windowKind = {}, .seenAt = seenAt};
    const auto kind = memberIfPresent<std::string_view>(block, "rateLimitType");
    if (kind && kind->size() <= longestKind) notice.windowKind = std::string(*kind);
    return notice;
}

std::optional<QuotaNotice::Notice> noticeIn(JsonObject& record) {
    const auto time = memberIfPresent<std::string_view>(record, "timestamp");
    const auto seenAt = time ? plausibleDate(parseInternetDate(*time)) : std::nullopt;
    auto block = memberIfPresent<JsonObject>(record, blockName);
    return seenAt && block ? lies(*block, *seenAt) : std::nullopt;
}

using Found = std::optional<QuotaNotice::Notice>;

void keepLater(Found& latest, const Found& found) {
    if (found && (!latest || found->seenAt > latest->seenAt)) latest = found;
}

Found latestIn(std::string_view padded, Date now) {
    JsonReader json;
    Found latest;
    forEachLine(padded, [&](std::string_view line) {
        if (line.find(blockName) == std::string_view::npos) return;
        json.readObject(line, [&](JsonObject& record) {
            const Found notice = noticeIn(record);
            if (notice && !isOfFuture(notice->seenAt, now)) keepLater(latest, notice);
        });
    });
    return latest;
}

}  // namespace

QuotaNotice& QuotaNotice::shared() {
    static QuotaNotice notices;
    return notices;
}

std::optional<QuotaNotice::Notice> QuotaNotice::aktuelle(const std::string& root, Date now,
                                                         Seconds windowLength) {
    {
        const std::lock_guard guard(lock);
        const bool isOfThis = rememberedAt && rememberedRoot == root;
        if (isOfThis && now >= *rememberedAt && now - *rememberedAt < shortestRest) {
            return remembered;
        }
        // From now on others are served from memory.
        if (!isOfThis) remembered.reset();
        rememberedRoot = root;
        rememberedAt = now;
    }
    const auto found = search(root, now, windowLength);
    const std::lock_guard guard(lock);
    if (rememberedRoot == root) remembered = found;
    return found;
}

std::optional<QuotaNotice::Notice> QuotaNotice::search(const std::string& root, Date now,
                                                       Seconds windowLength) {
    SkipTally ignored;
    std::vector<FoundFile> recent;
    for (FoundFile& file : findRegularFiles(root, {}, {".jsonl"}, ignored)) {
        if (modificationDate(file.stamp) >= now - windowLength) recent.push_back(std::move(file));
    }
    const auto found = transcripts.load(
        std::move(recent), [&](const FoundFile& file, const auto&) -> std::shared_ptr<const Found> {
            const auto tail = readFileTail(file.path, tailSize);
            return tail ? std::make_shared<const Found>(latestIn(*tail, now)) : nullptr;
        });
    Found latest;
    for (const auto& notice : found) {
        if (notice) keepLater(latest, *notice);
    }
    return latest;
}

std::optional<Date> QuotaNotice::korrigiert(std::optional<Date> derived,
                                            const std::optional<Notice>& notice, Date now,
                                            Seconds windowLength) {
    if (!notice || notice->windowKind != fiveHourKind) return derived;
    const bool isAhead = notice->resetsAt > now && notice->resetsAt - now <= windowLength;
    const bool isRecent = !isOfFuture(notice->seenAt, now) && now - notice->seenAt <= windowLength;
    return isAhead && isRecent ? notice->resetsAt : derived;
}

std::string QuotaNotice::schwanz(const std::string& file) {
    return readFileTail(file, tailSize).value_or(std::string());
}

}  // namespace fleetwise
