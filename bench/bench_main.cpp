// fleetwise-bench pass HOME [N]: collects the fleet of the home folder HOME once cold and N times
// warm (20 unless given), as the application with its default settings does, and prints one JSON
// object on one line:
// {"firstMs":…,"warmMs":… (median),"phases":{"name":ms,…} (of the median pass),"sessions":…,
//  "peakMiB":…}
//
// fleetwise-bench cost HOME [--threads N]: scans the costs of all sessions in HOME with an empty
// cache, then again; see cost_bench.h. One JSON object on one line:
// {"coldMs":…,"warmMs":…,"files":…,"bytes":… (read in the first scan),"peakMiB":…,"sessions":…,
//  "input":…,"output":…,"cacheRead":…,"cacheWrite":…,"requests":…,"codex":{"sessions":…,…}}
//
// fleetwise-bench hook PROGRAM [N]: times the hook program against /bin/true and others, N times
// each (100 unless given); see hook_bench.h.
//
// fleetwise-bench live HOME HOOK [N]: times N events (200 unless given) from the start of the hook
// program to the list that shows them; see live_bench.h.
//
// fleetwise-bench windows HOME [N]: times how long each window takes to open, and opens and closes
// all of them N times (50 unless given); see window_bench.h.

#include "app/machine_sources.h"
#include "bench_support.h"
#include "cost_bench.h"
#include "foundation/user_defaults.h"
#include "hook_bench.h"
#include "live_bench.h"
#include "monitor/settings.h"
#include "sources/paths.h"
#include "window_bench.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>

namespace fleetwise {
namespace {

constexpr int usualPasses = 20;
constexpr int usualHookRuns = 100;
constexpr int usualEvents = 200;
constexpr int usualRounds = 50;

struct Measurement {
    double milliseconds = 0;
    std::vector<FleetSnapshot::Timing> phases;
    std::size_t sessions = 0;
};

Measurement measuredPass(const FleetSnapshot::Input& input, const FleetSnapshot::Sources& sources,
                         FleetSnapshot::Shared& shared) {
    const auto start = std::chrono::steady_clock::now();
    const auto collection = FleetSnapshot::collect(input, sources, shared, currentDate());
    const std::chrono::duration<double, std::milli> taken =
        std::chrono::steady_clock::now() - start;
    return {.milliseconds = taken.count(),
            .phases = shared.timings,
            .sessions = collection.sessions.size()};
}

int benchPass(const std::string& home, int repetitions) {
    Paths::setHome(home);
    InMemoryUserDefaults defaults;
    const FleetSnapshot::Input input = Settings(defaults).snapshotInput();
    MachineSources machine;
    const FleetSnapshot::Sources sources = machine.sources();
    FleetSnapshot::Shared shared;

    const Measurement first = measuredPass(input, sources, shared);
    std::vector<Measurement> warm;
    for (int pass = 0; pass < repetitions; ++pass) {
        warm.push_back(measuredPass(input, sources, shared));
    }
    const auto middle = warm.begin() + std::ssize(warm) / 2;
    std::nth_element(warm.begin(), middle, warm.end(), [](const auto& left, const auto& right) {
        return left.milliseconds < right.milliseconds;
    });

    nlohmann::ordered_json phases = nlohmann::ordered_json::object();
    for (const auto& [name, milliseconds] : middle->phases)
        phases[name] = rounded(milliseconds);
    const nlohmann::ordered_json result{{"firstMs", rounded(first.milliseconds)},
                                        {"warmMs", rounded(middle->milliseconds)},
                                        {"phases", std::move(phases)},
                                        {"sessions", middle->sessions},
                                        {"peakMiB", rounded(peakMebibytes())}};
    std::printf("%s\n", result.dump().c_str());
    return 0;
}

int usage() {
    std::fputs(
        "usage: fleetwise-bench pass HOME [N]\n"
        "       fleetwise-bench cost HOME [--threads N]\n"
        "       fleetwise-bench hook PROGRAM [N]\n"
        "       fleetwise-bench live HOME PROGRAM [N]\n"
        "       fleetwise-bench windows HOME [N]\n",
        stderr);
    return 2;
}

int missing(const std::string& path, const char* kind) {
    std::fprintf(stderr, "fleetwise-bench: %s is no %s\n", path.c_str(), kind);
    return 1;
}

std::string absolute(const std::string& path) {
    return std::filesystem::absolute(path).string();
}

/// The number at `position`, or the usual one where there is none; 0 for what is no number.
int countAt(const std::vector<std::string>& given, std::size_t position, int usual) {
    return given.size() > position ? std::atoi(given[position].c_str()) : usual;
}

int runPass(const std::vector<std::string>& given) {
    const int passes = countAt(given, 2, usualPasses);
    if (passes < 1) return usage();
    const std::string home = absolute(given[1]);
    return std::filesystem::is_directory(home) ? benchPass(home, passes) : missing(home, "folder");
}

int runCost(const std::vector<std::string>& given) {
    const bool hasThreads = given.size() == 4 && given[2] == "--threads";
    const int threads = hasThreads ? std::atoi(given[3].c_str()) : 0;
    if (given.size() != (hasThreads ? 4 : 2) || threads < (hasThreads ? 1 : 0)) return usage();
    const std::string home = absolute(given[1]);
    return std::filesystem::is_directory(home) ? benchCost(home, static_cast<unsigned>(threads))
                                               : missing(home, "folder");
}

int runHook(const std::vector<std::string>& given) {
    const int runs = countAt(given, 2, usualHookRuns);
    if (runs < 1) return usage();
    const std::string hook = absolute(given[1]);
    return std::filesystem::is_regular_file(hook) ? benchHook(hook, runs)
                                                  : missing(hook, "program");
}

int runLive(const std::vector<std::string>& given) {
    const int events = countAt(given, 3, usualEvents);
    if (given.size() < 3 || events < 1) return usage();
    const std::string home = absolute(given[1]);
    const std::string hook = absolute(given[2]);
    if (!std::filesystem::is_directory(home)) return missing(home, "folder");
    return std::filesystem::is_regular_file(hook) ? benchLive(home, hook, events)
                                                  : missing(hook, "program");
}

int runWindows(const std::vector<std::string>& given) {
    const int rounds = countAt(given, 2, usualRounds);
    if (rounds < 1) return usage();
    const std::string home = absolute(given[1]);
    return std::filesystem::is_directory(home) ? benchWindows(home, rounds)
                                               : missing(home, "folder");
}

}  // namespace
}  // namespace fleetwise

int main(int argumentCount, char** arguments) {
    using namespace fleetwise;
    const std::vector<std::string> given(arguments + 1, arguments + argumentCount);
    if (given.size() < 2) return usage();
    if (given[0] == "pass") return runPass(given);
    if (given[0] == "cost") return runCost(given);
    if (given[0] == "hook") return runHook(given);
    if (given[0] == "live") return runLive(given);
    return given[0] == "windows" ? runWindows(given) : usage();
}
