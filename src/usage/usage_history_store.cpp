#include "usage/usage_history_store.h"

#include "cost/record_walk.h"
#include "foundation/directory.h"
#include "foundation/regular_file.h"
#include "sources/paths.h"
#include "usage/percent.h"
#include "usage/plausible_date.h"

#include <algorithm>
#include <unordered_set>

namespace fleetwise {

namespace {

constexpr std::size_t largestFile = 64 << 20;
constexpr std::size_t longestOrg = 256;

bool isEarlier(const UsageSample& left, const UsageSample& right) {
    return left.date < right.date;
}

/// Reads a member into `into`; false where it is of another type.
template <typename T>
bool take(JsonValue value, std::optional<T>& into) {
    const auto read = readValue<T>(value);
    if (read) into = *read;
    return read.has_value();
}

/// An entry while it is read.
struct Entry {
    std::optional<double> milliseconds;
    std::optional<double> fiveHour;
    std::optional<double> sevenDay;
    std::optional<double> extraUsage;
    std::optional<std::string_view> org;
    bool isSound = true;  ///< no member is of another type
};

void readFigure(JsonKey key, JsonValue value, Entry& entry) {
    bool isSound = true;
    if (key == "fh") {
        isSound = take(value, entry.fiveHour);
    } else if (key == "sd") {
        isSound = take(value, entry.sevenDay);
    } else if (key == "xu") {
        isSound = take(value, entry.extraUsage);
    }
    entry.isSound = entry.isSound && isSound;
}

bool readEntryMember(JsonKey key, JsonValue value, Entry& entry) {
    if (key == "t") {
        entry.isSound = take(value, entry.milliseconds) && entry.isSound;
    } else if (key == "org") {
        entry.isSound = take(value, entry.org) && entry.isSound;
    } else if (key == "u") {
        const auto figures = readValue<JsonObject>(value);
        if (!figures) entry.isSound = false;
        if (!figures || !*figures) return true;
        return forEachMember(**figures, [&](JsonKey name, JsonValue figure) {
            readFigure(name, figure, entry);
            return true;
        });
    }
    return true;
}

std::optional<int> percentIn(const std::optional<double>& figure) {
    return figure ? std::optional(clampedPercent(*figure)) : std::nullopt;
}

std::optional<UsageSample> sampleOf(const Entry& entry) {
    if (!entry.isSound || !entry.milliseconds) return {};
    const auto date = plausibleDate(*entry.milliseconds / 1000);
    if (!date || (entry.org && entry.org->size() > longestOrg)) return {};
    UsageSample sample{.date = *date,
                       .fiveHour = percentIn(entry.fiveHour),
                       .sevenDay = percentIn(entry.sevenDay),
                       .org = {},
                       .extraUsage = entry.extraUsage};
    if (entry.org && !entry.org->empty()) sample.org = std::string(*entry.org);
    return sample;
}

/// Sorts the samples and keeps the latest mostSamples of them.
void settle(UsageSamples& samples) {
    std::stable_sort(samples.begin(), samples.end(), isEarlier);
    if (samples.size() <= UsageHistoryStore::mostSamples) return;
    const auto excess = samples.size() - UsageHistoryStore::mostSamples;
    samples.erase(samples.begin(), samples.begin() + static_cast<std::ptrdiff_t>(excess));
}

/// False where the text is broken.
bool readSamples(JsonArray entries, UsageSamples& samples) {
    for (auto next : entries) {
        JsonValue value;
        if (std::move(next).get(value)) return false;
        std::optional<Entry> entry;
        if (!walkInto(value, entry, readEntryMember)) return false;
        auto sample = entry ? sampleOf(*entry) : std::nullopt;
        if (!sample) continue;
        samples.push_back(*std::move(sample));
        if (samples.size() >= 2 * UsageHistoryStore::mostSamples) settle(samples);
    }
    return true;
}

UsageSamples::const_iterator endOfMeasured(const UsageSamples& samples, Date now) {
    return std::find_if(samples.rbegin(), samples.rend(),
                        [&](const UsageSample& sample) { return !isOfFuture(sample.date, now); })
        .base();
}

QuotaValues valuesOf(const UsageSamples& from, std::optional<int> UsageSample::*percent) {
    QuotaValues values;
    values.reserve(from.size());
    for (const UsageSample& sample : from) {
        if (sample.*percent) values.emplace_back(sample.date, *(sample.*percent));
    }
    return values;
}

}  // namespace

UsageHistoryStore::UsageHistoryStore(std::string givenPath)
    : path(std::move(givenPath)), cachedSamples(std::make_shared<const UsageSamples>()) {}

UsageHistoryStore& UsageHistoryStore::shared() {
    static UsageHistoryStore store(Paths::usageHistoryFile());
    return store;
}

std::shared_ptr<const UsageSamples> UsageHistoryStore::samples() {
    // Held while the file is read as well, so that of two callers only one decodes it.
    const std::lock_guard guard(lock);
    const auto entry = inspectFile(path);
    const bool isFile = entry && entry->kind == FileKind::regular;
    if (isFile && cachedStamp == entry->stamp) return cachedSamples;
    // Judged by the stamp from before the reading: what is written meanwhile changes it.
    const auto contents =
        isFile ? readRegularFile(path, largestFile) : tl::unexpected(FileError::missing);
    cachedStamp = contents ? std::optional(entry->stamp) : std::nullopt;
    auto decoded = contents ? decode(*contents) : std::nullopt;
    cachedSamples =
        std::make_shared<const UsageSamples>(decoded ? *std::move(decoded) : UsageSamples());
    return cachedSamples;
}

std::optional<UsageSamples> UsageHistoryStore::decode(std::string_view padded) {
    JsonReader json;
    UsageSamples samples;
    bool isHistory = true;
    const auto readRoot = [&](JsonKey key, JsonValue value) {
        if (!(key == "samples")) return true;
        const auto entries = readValue<JsonArray>(value);
        isHistory = entries.has_value();
        return isHistory && (!*entries || readSamples(**entries, samples));
    };
    const bool isWhole = json.walkObject(
        padded, [&](JsonObject& root) { isHistory = forEachMember(root, readRoot) && isHistory; });
    if (!isWhole || !isHistory) return {};
    settle(samples);
    return samples;
}

std::vector<std::string> UsageHistoryStore::orgs(const UsageSamples& from, Date now) {
    std::vector<std::string> found;
    std::unordered_set<std::string_view> known;
    for (auto end = endOfMeasured(from, now); end != from.begin();) {
        // Of samples of one date the first counts first.
        const auto begin = std::lower_bound(from.begin(), end, *(end - 1), isEarlier);
        for (auto sample = begin; sample != end; ++sample) {
            if (sample->org && known.insert(*sample->org).second) found.push_back(*sample->org);
        }
        end = begin;
    }
    return found;
}

std::optional<std::string> UsageHistoryStore::primaryOrg(const UsageSamples& from, Date now) {
    std::optional<Date> latest;
    std::optional<std::string> org;
    for (auto sample = endOfMeasured(from, now); sample != from.begin();) {
        --sample;
        if (latest && sample->date < *latest) break;
        if (!sample->org) continue;
        latest = sample->date;
        org = sample->org;
    }
    return org;
}

UsageSamples UsageHistoryStore::samples(const std::optional<std::string>& org,
                                        const UsageSamples& from) {
    if (!org) return from;
    UsageSamples chosen;
    std::copy_if(from.begin(), from.end(), std::back_inserter(chosen),
                 [&](const UsageSample& sample) { return !sample.org || sample.org == org; });
    return chosen;
}

QuotaValues UsageHistoryStore::fiveHourValues(const UsageSamples& from) {
    return valuesOf(from, &UsageSample::fiveHour);
}

QuotaValues UsageHistoryStore::sevenDayValues(const UsageSamples& from) {
    return valuesOf(from, &UsageSample::sevenDay);
}

}  // namespace fleetwise
