#include "usage/own_sample_store.h"

#include "foundation/atomic_file.h"
#include "foundation/json.h"
#include "foundation/regular_file.h"
#include "usage/plausible_date.h"
#include "usage/usage_history_store.h"

#include <algorithm>
#include <cmath>

namespace fleetwise {

namespace {

constexpr std::size_t largestFile = 8 << 20;

UsageSamples readSamples(const std::string& path) {
    const auto contents = readRegularFile(path, largestFile);
    auto decoded = contents ? UsageHistoryStore::decode(*contents) : std::nullopt;
    return decoded ? *std::move(decoded) : UsageSamples();
}

std::string encode(const UsageSamples& samples) {
    Json entries = Json::array();
    for (const UsageSample& sample : samples) {
        Json figures = Json::object();
        if (sample.fiveHour) figures["fh"] = *sample.fiveHour;
        if (sample.sevenDay) figures["sd"] = *sample.sevenDay;
        entries.push_back(
            {{"t", std::llround(secondsSince1970(sample.date) * 1000)}, {"u", std::move(figures)}});
    }
    return encodeJson({{"samples", std::move(entries)}});
}

bool isKept(const UsageSample& sample, Date now) {
    return !isOfFuture(sample.date, now) && now - sample.date <= OwnSampleStore::keptFor;
}

bool hasFigures(const UsageSample& sample) {
    return sample.fiveHour || sample.sevenDay;
}

UsageSamples::const_iterator firstFrom(const UsageSamples& samples, Date date) {
    return std::lower_bound(
        samples.begin(), samples.end(), date,
        [](const UsageSample& sample, Date since) { return sample.date < since; });
}

/// Whether a sample of the history, with figures, was measured at that time.
bool isMeasured(const UsageSamples& history, Date date) {
    auto sample = firstFrom(history, date - OwnSampleStore::sameMeasurement);
    for (; sample != history.end() && sample->date <= date + OwnSampleStore::sameMeasurement;
         ++sample) {
        if (hasFigures(*sample)) return true;
    }
    return false;
}

}  // namespace

OwnSampleStore::OwnSampleStore(std::string givenPath) : path(std::move(givenPath)) {}

std::shared_ptr<const UsageSamples> OwnSampleStore::add(const std::optional<UsageSample>& latest,
                                                        Date now) {
    // Held while the file is read and written, since both belong to one change.
    const std::lock_guard guard(lock);
    UsageSamples samples = known ? *known : readSamples(path);
    std::erase_if(samples, [&](const UsageSample& sample) { return !isKept(sample, now); });
    bool isNew = latest && hasFigures(*latest) && isKept(*latest, now);
    if (isNew) {
        const auto place = firstFrom(samples, latest->date);
        isNew = place == samples.end() || place->date != latest->date;
        if (isNew) samples.insert(place, *latest);
    }
    if (!known || samples != *known) {
        known = std::make_shared<const UsageSamples>(std::move(samples));
    }
    // The figures can be spared, so that a failed writing is of no consequence.
    if (isNew) static_cast<void>(writeFileAtomically(path, encode(*known)));
    return known;
}

UsageSamples OwnSampleStore::merged(const UsageSamples& history, const UsageSamples& own) {
    UsageSamples added;
    std::copy_if(own.begin(), own.end(), std::back_inserter(added),
                 [&](const UsageSample& sample) { return !isMeasured(history, sample.date); });
    UsageSamples all;
    all.reserve(history.size() + added.size());
    std::merge(
        history.begin(), history.end(), added.begin(), added.end(), std::back_inserter(all),
        [](const UsageSample& left, const UsageSample& right) { return left.date < right.date; });
    return all;
}

}  // namespace fleetwise
