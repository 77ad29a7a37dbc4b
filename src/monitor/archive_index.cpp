#include "monitor/archive_index.h"

#include <algorithm>
#include <set>
#include <tuple>
#include <utility>

namespace fleetwise {

namespace {

constexpr std::size_t portionSize = 100;
/// Between two notices that more titles are known.
constexpr Seconds titlesInterval{0.4};

bool isListedBefore(const ArchiveEntry& left, const ArchiveEntry& right) {
    return std::tie(right.lastActivityAt, left.id) < std::tie(left.lastActivityAt, right.id);
}

}  // namespace

ArchiveIndex::ArchiveIndex(MainLoop& givenLoop, Reader givenReader)
    : loop(givenLoop), reader(std::move(givenReader)) {}

ArchiveIndex::~ArchiveIndex() = default;

void ArchiveIndex::refresh() {
    isListingWanted = true;
    goOn();
}

void ArchiveIndex::goOn() {
    if (isBusy) return;
    if (isListingWanted) {
        list();
    } else if (readSoFar < unread.size()) {
        readPortion();
    }
}

void ArchiveIndex::list() {
    const std::weak_ptr<bool> alive = aliveToken;
    isBusy = true;
    isListingWanted = false;
    runInBackground(
        loop, [read = reader.list, now = loop.now()] { return listingOf(read(now)); },
        [this, alive](Listing found) {
            if (!alive.expired()) adopt(std::move(found));
        });
}

ArchiveIndex::Listing ArchiveIndex::listingOf(std::vector<ArchiveEntry> found) {
    std::ranges::sort(found, isListedBefore);
    std::set<std::string_view> seen;
    std::vector<ArchiveEntry> single;
    single.reserve(found.size());
    for (ArchiveEntry& entry : found) {
        if (seen.contains(entry.id)) continue;
        entry.makeSearchText();
        single.push_back(std::move(entry));
        seen.insert(single.back().id);
    }
    auto places = placesOf(single);
    return {std::move(single), std::move(places)};
}

std::unordered_map<std::string, std::size_t> ArchiveIndex::placesOf(
    const std::vector<ArchiveEntry>& entries) {
    std::unordered_map<std::string, std::size_t> places;
    places.reserve(entries.size());
    for (std::size_t place = 0; place < entries.size(); ++place)
        places.emplace(entries[place].id, place);
    return places;
}

void ArchiveIndex::adopt(Listing newListing) {
    isBusy = false;
    const bool isNews = !isListed || newListing.entries != listing.entries;
    isListed = true;
    unread.clear();
    readSoFar = 0;
    for (const ArchiveEntry& entry : newListing.entries) {
        if (!entry.isComplete) unread.push_back(entry.id);
    }
    if (isNews) {
        listing = std::move(newListing);
        tell();
    }
    goOn();
}

void ArchiveIndex::readPortion() {
    const auto begin = unread.begin() + static_cast<std::ptrdiff_t>(readSoFar);
    const auto count = std::min(portionSize, unread.size() - readSoFar);
    std::vector<std::string> asked(begin, begin + static_cast<std::ptrdiff_t>(count));
    std::vector<ArchiveEntry> portion;
    for (const std::string& id : asked)
        portion.push_back(listing.entries[listing.places.at(id)]);
    const std::weak_ptr<bool> alive = aliveToken;
    isBusy = true;
    runInBackground(
        loop,
        [read = reader.complete, portion = std::move(portion)] {
            std::vector<ArchiveEntry> filled = read(portion);
            std::ranges::for_each(filled, &ArchiveEntry::makeSearchText);
            return filled;
        },
        [this, alive, asked = std::move(asked)](std::vector<ArchiveEntry> filled) {
            if (!alive.expired()) adoptPortion(asked, std::move(filled));
        });
}

void ArchiveIndex::adoptPortion(const std::vector<std::string>& asked,
                                std::vector<ArchiveEntry> filled) {
    isBusy = false;
    readSoFar += asked.size();
    std::set<std::string> gone(asked.begin(), asked.end());
    for (ArchiveEntry& entry : filled) {
        if (gone.erase(entry.id) == 0) continue;
        entry.isComplete = true;
        listing.entries[listing.places.at(entry.id)] = std::move(entry);
    }
    if (!gone.empty()) {
        std::erase_if(listing.entries,
                      [&](const ArchiveEntry& entry) { return gone.contains(entry.id); });
        listing.places = placesOf(listing.entries);
    }
    if (readSoFar < unread.size()) {
        tellSoon();
    } else {
        tell();
    }
    goOn();
}

void ArchiveIndex::tellSoon() {
    if (!telling) telling = loop.after(titlesInterval, [this] { tell(); });
}

void ArchiveIndex::tell() {
    telling.reset();
    for (Observer* observer : std::vector(observers)) {
        if (std::ranges::find(observers, observer) != observers.end()) observer->archiveChanged();
    }
}

const std::vector<ArchiveEntry>& ArchiveIndex::entries() const {
    return listing.entries;
}

const ArchiveEntry* ArchiveIndex::entry(const std::string& sessionId) const {
    const auto found = listing.places.find(sessionId);
    return found == listing.places.end() ? nullptr : &listing.entries[found->second];
}

bool ArchiveIndex::hasListed() const {
    return isListed;
}

std::optional<ArchiveIndex::Progress> ArchiveIndex::progress() const {
    if (readSoFar >= unread.size()) return {};
    return Progress{.read = readSoFar, .all = unread.size()};
}

void ArchiveIndex::addObserver(Observer& observer) {
    observers.push_back(&observer);
}

void ArchiveIndex::removeObserver(Observer& observer) {
    std::erase(observers, &observer);
}

}  // namespace fleetwise
