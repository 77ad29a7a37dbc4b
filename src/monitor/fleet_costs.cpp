#include "monitor/fleet_costs.h"

#include <algorithm>
#include <set>
#include <string_view>
#include <utility>

namespace fleetwise {

namespace {

constexpr Seconds progressInterval{0.25};

}  // namespace

FleetCosts::FleetCosts(Environment givenEnvironment)
    : environment(std::move(givenEnvironment)),
      book(Prices::current()),
      sessions(environment.store.sessions()),
      sum(sessions) {}

FleetCosts::~FleetCosts() = default;

void FleetCosts::followPass(News news, bool includesCodex) {
    hasNews = hasNews || news == News::some;
    const Date now = environment.loop.now();
    const bool isDue = hasNews ? now >= nextScan : now - ended >= longestRest;
    // A clock that was set back must not make this wait.
    if (!isScanning && (isDue || now < ended)) scan(includesCodex);
}

void FleetCosts::scan(bool includesCodex) {
    const std::weak_ptr<bool> alive = aliveToken;
    isScanning = true;
    hasNews = false;
    begun = environment.loop.now();
    const bool isToSave = begun - saved >= savingInterval || begun < saved;
    if (isToSave) saved = begun;
    progressTimer = environment.loop.every(progressInterval, [this] { showProgress(); });
    runInBackground(
        environment.loop,
        [&store = environment.store, now = begun, includesCodex,
         saving = isToSave ? CostStore::Saving::atOnce : CostStore::Saving::later] {
            return store.refresh(now, includesCodex, saving);
        },
        [this, alive](const CostStore::Scan&) {
            if (!alive.expired()) finishScan();
        });
}

void FleetCosts::finishScan() {
    isScanning = false;
    ended = environment.loop.now();
    const Seconds taken = std::max(Seconds(0), ended - begun);
    // A machine that slept has not worked.
    nextScan = ended + std::clamp(taken * restPerWork, shortestRest, longestRest);
    progressTimer.reset();
    if (std::exchange(shownProgress, std::nullopt)) environment.progressChanged();
    if (environment.store.sessions() == sessions) return;
    adoptSessions();
    environment.costsChanged();
}

void FleetCosts::adoptSessions() {
    sessions = environment.store.sessions();
    sum = CostSum(sessions);
    offspring.clear();
    for (const auto& [id, session] : *sessions) {
        if (session->startedBy) offspring.emplace(*session->startedBy, id);
    }
    verdict = environment.store.priceVerdict(book);
}

void FleetCosts::showProgress() {
    if (environment.loop.now() - begun < longScan) return;
    auto progress = environment.store.progress();
    if (progress == shownProgress) return;
    shownProgress = progress;
    environment.progressChanged();
}

void FleetCosts::setPriceBook(Prices::Book newBook) {
    if (newBook == book) return;
    book = std::move(newBook);
    verdict = environment.store.priceVerdict(book);
    environment.costsChanged();
}

CostFigures FleetCosts::figures(const std::vector<std::string>& ids) const {
    std::vector<std::string> all = ids;
    std::set<std::string_view> started;
    // Grows while it is walked over: threads start threads.
    for (std::size_t index = 0; index < all.size() && !offspring.empty(); ++index) {
        const auto [begin, end] = offspring.equal_range(all[index]);
        for (auto thread = begin; thread != end; ++thread) {
            if (started.insert(thread->second).second) all.push_back(thread->second);
        }
    }
    return sum.of(all, book);
}

CostFigures FleetCosts::figuresOfToday() const {
    const std::string today = formatDate(environment.loop.now(), environment.calendar, "%F");
    return sum.ofDay(today, book);
}

std::vector<UsageDay> FleetCosts::usageDays(int count) const {
    return fleetwise::usageDays(sum.days(), book, count, environment.loop.now(),
                                environment.calendar);
}

std::shared_ptr<const SessionCost> FleetCosts::cost(const std::string& id) const {
    const auto found = sessions->find(id);
    return found == sessions->end() ? nullptr : found->second;
}

}  // namespace fleetwise
