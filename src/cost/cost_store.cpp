#include "cost/cost_store.h"

#include "cost/cost_scan.h"
#include "foundation/atomic_file.h"
#include "foundation/regular_file.h"
#include "sources/paths.h"

#include <algorithm>
#include <filesystem>
#include <thread>

namespace fleetwise {

namespace {

/// More than ten years of heavy use.
constexpr std::size_t largestCacheFile = 256 * 1024 * 1024;

/// No writer takes as long.
constexpr Seconds abandonment{3600};

unsigned threadsOrCores(unsigned threads) {
    return threads > 0 ? threads : std::max(1U, std::thread::hardware_concurrency());
}

}  // namespace

CostStore::CostStore(Places givenPlaces, Calendar givenCalendar, unsigned givenThreads)
    : places(std::move(givenPlaces)),
      calendar(givenCalendar),
      threads(threadsOrCores(givenThreads)),
      published(std::make_shared<SessionCosts>()) {}

CostStore& CostStore::shared() {
    static CostStore store({Paths::projectsDir(), Paths::codexDir(), Paths::costIndexFile()},
                           currentCalendar());
    return store;
}

void CostStore::load(Date now) {
    removeAbandonedFiles(places.cacheFile, now - abandonment);
    const auto text = readRegularFile(places.cacheFile, largestCacheFile);
    auto cache = text ? decodeCostCache(*text, calendar->name()) : std::nullopt;
    const std::lock_guard guard(lock);
    if (std::exchange(didLoad, true) || !cache) return;
    store = std::move(*cache);
    published = std::make_shared<SessionCosts>(store.sessions);
}

CostStore::Scan CostStore::refresh(Date now, bool includesCodex, Saving saving) {
    if (control.isStopping) return {};
    std::unique_lock guard(lock);
    if (std::exchange(isScanning, true)) return {};
    const bool isLoaded = didLoad;
    guard.unlock();
    if (!isLoaded) load(now);
    guard.lock();
    CostScan scan(store, calendar, control);
    guard.unlock();

    control.files = control.filesDone = 0;
    control.bytes = control.bytesDone = 0;
    scan.listClaude(places.projectsDirectory);
    if (includesCodex) scan.listCodex(places.codexDirectory, now - codexHistory);
    scan.read(threads, /*completesFamilies=*/!isLoaded);

    const Scan done{.hasRun = true,
                    .hasChanged = scan.hasChangedCosts(),
                    .filesRead = control.filesDone,
                    .skipped = scan.skippedFiles()};
    adopt(scan);
    if (saving == Saving::atOnce || control.isStopping) save();
    return done;
}

void CostStore::adopt(CostScan& scan) {
    const std::lock_guard guard(lock);
    isScanning = false;
    if (!scan.hasChangedCosts() && !scan.hasChangedFiles()) return;
    store = scan.takeCache();
    isUnsaved = true;
    if (scan.hasChangedCosts()) published = std::make_shared<SessionCosts>(store.sessions);
}

void CostStore::save() {
    const std::lock_guard writing(writer);
    std::unique_lock guard(lock);
    if (!std::exchange(isUnsaved, false)) return;
    const CostCache cache = store;
    guard.unlock();
    const std::string text = encodeCostCache(cache, calendar->name());
    static_cast<void>(makePrivateDirectory(std::filesystem::path(places.cacheFile).parent_path()));
    if (writeFileAtomically(places.cacheFile, text)) return;
    guard.lock();
    isUnsaved = true;
}

std::optional<CostStore::Progress> CostStore::progress() const {
    const std::lock_guard guard(lock);
    return isScanning ? std::optional(lastProgress()) : std::nullopt;
}

CostStore::Progress CostStore::lastProgress() const {
    return {control.files, control.filesDone, control.bytes, control.bytesDone};
}

std::shared_ptr<const SessionCosts> CostStore::sessions() const {
    const std::lock_guard guard(lock);
    return published;
}

std::shared_ptr<const CostStore::Session> CostStore::session(const std::string& id) const {
    const auto known = sessions();
    const auto found = known->find(id);
    return found == known->end() ? nullptr : found->second;
}

std::optional<Prices::Verdict> CostStore::priceVerdict(const Prices::Book& book) const {
    SessionCost all;
    for (const auto& [id, session] : *sessions()) {
        if (session->billedUSD) all.billedUSD = 0;
        all.billedModels.insert(all.billedModels.end(), session->billedModels.begin(),
                                session->billedModels.end());
    }
    return all.priceVerdict(book);
}

}  // namespace fleetwise
