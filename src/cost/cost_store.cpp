#include "cost/cost_store.h"

#include "cost/fork_families.h"
#include "foundation/atomic_file.h"
#include "foundation/regular_file.h"
#include "sources/paths.h"

#include <algorithm>
#include <filesystem>
#include <thread>
#include <unordered_set>

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

/// One scan: the files as listed, and what becomes of the cache by them.
class CostStore::Pass {
public:
    Pass(const CostStore& givenStore, CostScanControl& givenControl, CostCache givenCache)
        : store(givenStore), control(givenControl), cache(std::move(givenCache)) {}

    void listClaude() {
        folders.push_back(store.places.projectsDirectory + "/");
        for (auto& [id, files] : claudeCostFiles(store.places.projectsDirectory, skipped))
            add({.agent = SessionAgent(), .sessionId = id, .files = std::move(files)});
    }

    void listCodex(Date since) {
        folders.push_back(store.places.codexDirectory + "/");
        for (FoundFile& file : codexCostFiles(store.places.codexDirectory, since, skipped))
            add({.agent = SessionAgent("codex"), .sessionId = {}, .files = {.own = {file}}});
    }

    void read() {
        forgetMissingFiles();
        for (const CostTask& task : changed)
            control.bytes += task.files.bytes();
        for (const CostTask& task : changed)
            task.files.forEach([&](const FoundFile&) { ++control.files; });
        for (auto& reading : readCosts(changed, store.calendar, store.threads, control)) {
            if (reading) take(std::move(*reading));
        }
        const auto again = [this](const std::string& id, std::size_t requests) {
            return readAgain(id, requests);
        };
        ForkFamilies families(cache.sessions, fresh, again);
        for (const std::string& id : families.update(control.isStopping))
            forgetFilesOf(id);
    }

    bool hasChanged() const { return !fresh.empty() || hasForgotten; }
    std::size_t filesRead() const { return control.filesDone; }
    const SkipTally& skippedFiles() const { return skipped; }
    CostCache takeCache() { return std::move(cache); }

private:
    void add(CostTask task) {
        bool isKnown = true;
        task.files.forEach([&](const FoundFile& file) {
            listed.insert(file.path);
            isKnown = isKnown && isUnchanged(file);
        });
        if (isKnown) {
            known.push_back(std::move(task));
        } else {
            changed.push_back(std::move(task));
        }
    }

    bool isUnchanged(const FoundFile& file) const {
        const auto found = cache.files.find(file.path);
        return found != cache.files.end() &&
               found->second == fileState(file.stamp, found->second.sessionId);
    }

    /// Sessions are kept: what they cost stays true.
    void forgetMissingFiles() {
        const auto isMissing = [&](const auto& file) {
            const bool wasLookedFor = std::ranges::any_of(
                folders, [&](const std::string& folder) { return file.first.starts_with(folder); });
            return wasLookedFor && !listed.contains(file.first);
        };
        hasForgotten = std::erase_if(cache.files, isMissing) > 0;
    }

    /// The next scan reads them again.
    void forgetFilesOf(const std::string& id) {
        std::erase_if(cache.files, [&](const auto& file) { return file.second.sessionId == id; });
    }

    void take(CostReading reading) {
        skipped += reading.skipped;
        for (const auto& [path, stamp] : reading.files)
            cache.files[path] = fileState(stamp, reading.sessionId);
        auto session = std::make_shared<SessionCost>(std::move(reading.usage.cost));
        const auto before = cache.sessions.find(reading.sessionId);
        if (before != cache.sessions.end()) session->lineage = before->second->lineage;
        cache.sessions[reading.sessionId] = std::move(session);
        fresh[reading.sessionId] = std::move(reading.usage);
    }

    std::optional<SessionUsage> readAgain(const std::string& id, std::size_t requests) {
        const CostTask* task = taskOf(id);
        if (task == nullptr) return {};
        auto reading = CostReader(store.calendar, control).read(*task, requests);
        if (!reading) return {};
        return std::move(reading->usage);
    }

    const CostTask* taskOf(const std::string& id) {
        if (tasks.empty()) {
            for (const auto* list : {&known, &changed}) {
                for (const CostTask& task : *list) {
                    const auto file = cache.files.find(task.files.own.front().path);
                    if (file != cache.files.end()) tasks[file->second.sessionId] = &task;
                }
            }
        }
        const auto found = tasks.find(id);
        return found == tasks.end() ? nullptr : found->second;
    }

    const CostStore& store;
    CostScanControl& control;
    CostCache cache;
    std::vector<CostTask> known;       ///< as the cache has them
    std::vector<CostTask> changed;     ///< to be read
    std::vector<std::string> folders;  ///< that were listed
    std::unordered_set<std::string> listed;
    ForkFamilies::Fresh fresh;
    std::map<std::string, const CostTask*> tasks;  ///< by session id, once they are needed
    bool hasForgotten = false;
    SkipTally skipped;
};

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
    Pass pass(*this, control, store);
    guard.unlock();

    for (auto* count : {&control.files, &control.filesDone})
        *count = 0;
    control.bytes = control.bytesDone = 0;
    pass.listClaude();
    if (includesCodex) pass.listCodex(now - codexHistory);
    pass.read();

    guard.lock();
    Scan scan{.hasRun = true,
              .hasChanged = pass.hasChanged(),
              .filesRead = pass.filesRead(),
              .skipped = pass.skippedFiles()};
    if (scan.hasChanged) {
        store = pass.takeCache();
        published = std::make_shared<SessionCosts>(store.sessions);
        isUnsaved = true;
    }
    isScanning = false;
    guard.unlock();
    if (saving == Saving::atOnce || control.isStopping) save();
    return scan;
}

void CostStore::save() {
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
    std::vector<BilledSlice> billed;
    bool hasReport = false;
    for (const auto& [id, session] : *sessions()) {
        hasReport = hasReport || session->billedUSD || !session->billedModels.empty();
        billed.insert(billed.end(), session->billedModels.begin(), session->billedModels.end());
    }
    if (!hasReport) return {};
    return Prices::verdict(billed, Prices::usualTolerance, book);
}

}  // namespace fleetwise
