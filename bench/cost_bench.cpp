#include "cost_bench.h"

#include "bench_support.h"
#include "cost/cost_store.h"
#include "cost/cost_sum.h"
#include "sources/paths.h"

#include <nlohmann/json.hpp>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>

namespace fleetwise {

namespace {

struct TimedScan {
    double milliseconds = 0;
    CostStore::Scan scan;
    CostStore::Progress progress;
};

/// With a store of its own: what it knows it has from the cache file.
TimedScan timedScan(CostStore& store) {
    const auto start = std::chrono::steady_clock::now();
    TimedScan timed{.scan = store.refresh(currentDate(), /*includesCodex=*/true)};
    const std::chrono::duration<double, std::milli> taken =
        std::chrono::steady_clock::now() - start;
    timed.milliseconds = taken.count();
    timed.progress = store.lastProgress();
    return timed;
}

/// The sums over the sessions of one agent; what forks copied counts once.
nlohmann::ordered_json sums(const CostStore& store, const SessionAgent& agent) {
    const auto sessions = store.sessions();
    std::vector<std::string> ids;
    for (const auto& [id, session] : *sessions) {
        if (session->agent == agent) ids.push_back(id);
    }
    const Prices::Book book = Prices::current();
    const CostFigures figures = CostSum(sessions).of(ids, book);
    return {{"sessions", ids.size()},
            {"input", figures.tally.input},
            {"output", figures.tally.output},
            {"cacheRead", figures.tally.cacheRead},
            {"cacheWrite", figures.tally.cacheWrites()},
            {"requests", figures.requests}};
}

std::string temporaryFolder() {
    std::string path = (std::filesystem::temp_directory_path() / "fleetwise-XXXXXX").string();
    return ::mkdtemp(path.data()) == nullptr ? std::string() : path;
}

}  // namespace

int benchCost(const std::string& home, unsigned threads) {
    const std::string folder = temporaryFolder();
    if (folder.empty()) {
        std::perror("fleetwise-bench: temporary folder");
        return 1;
    }
    Paths::setHome(home);
    const CostStore::Places places{Paths::projectsDir(), Paths::codexDir(),
                                   folder + "/cost-index.json"};
    CostStore coldStore(places, currentCalendar(), threads);
    const TimedScan cold = timedScan(coldStore);
    CostStore warmStore(places, currentCalendar(), threads);
    const TimedScan warm = timedScan(warmStore);
    std::filesystem::remove_all(folder);

    nlohmann::ordered_json result{{"coldMs", rounded(cold.milliseconds)},
                                  {"warmMs", rounded(warm.milliseconds)},
                                  {"files", cold.progress.filesDone},
                                  {"bytes", cold.progress.bytesDone},
                                  {"peakMiB", rounded(peakMebibytes())}};
    result.update(sums(warmStore, SessionAgent()));
    result["codex"] = sums(warmStore, SessionAgent("codex"));
    std::printf("%s\n", result.dump().c_str());
    return warm.scan.filesRead == 0 ? 0 : 1;
}

}  // namespace fleetwise
