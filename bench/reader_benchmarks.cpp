// Google Benchmark cases for the readers and the pass, on a generated home.

#include "app/machine_sources.h"
#include "cost/transcript_reader.h"
#include "foundation/directory.h"
#include "foundation/json.h"
#include "foundation/regular_file.h"
#include "foundation/user_defaults.h"
#include "generator/generate.h"
#include "monitor/settings.h"
#include "sources/paths.h"
#include "sources/status_store.h"
#include "usage/usage_history_store.h"

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

namespace fleetwise {
namespace {

/// A generated home that lasts as long as the process.
class BenchHome {
public:
    BenchHome() {
        folder = (std::filesystem::temp_directory_path() / "fleetwise-bench-XXXXXX").string();
        if (::mkdtemp(folder.data()) == nullptr) std::abort();
        const generator::Plan plan{.sessions = 320, .megabytes = 100, .live = 20, .usageDays = 41};
        auto generated = generator::generate(plan, folder);
        if (!generated) std::abort();
        books = *std::move(generated);
        Paths::setHome(folder);
    }
    BenchHome(const BenchHome&) = delete;
    BenchHome& operator=(const BenchHome&) = delete;
    ~BenchHome() {
        std::error_code ignored;
        std::filesystem::remove_all(folder, ignored);
    }

    /// The largest transcript that is still read whole.
    const generator::SessionBook& largestTranscript() const {
        const generator::SessionBook* largest = &books.sessions.front();
        for (const auto& session : books.sessions) {
            const bool isWhole =
                session.transcriptBytes <= std::int64_t{TranscriptReader::fullScanLimit};
            if (isWhole && session.transcriptBytes > largest->transcriptBytes) largest = &session;
        }
        return *largest;
    }

    std::string folder;
    generator::Books books;
};

BenchHome& home() {
    static BenchHome made;
    return made;
}

void readWholeTranscript(benchmark::State& state) {
    const auto& session = home().largestTranscript();
    for (auto _ : state) {
        TranscriptReader reader(Paths::projectsDir());
        benchmark::DoNotOptimize(reader.stats(session.transcriptPath));
    }
    state.SetBytesProcessed(state.iterations() * session.transcriptBytes);
}
BENCHMARK(readWholeTranscript);

void readAppendedLine(benchmark::State& state) {
    const std::string path = home().folder + "/growing.jsonl";
    std::filesystem::copy_file(home().largestTranscript().transcriptPath, path,
                               std::filesystem::copy_options::overwrite_existing);
    TranscriptReader reader(Paths::projectsDir());
    reader.stats(path);
    const std::string line =
        R"({"type":"assistant","message":{"model":"m","content":[],"usage":{"output_tokens":1}}})"
        "\n";
    for (auto _ : state) {
        state.PauseTiming();
        std::ofstream(path, std::ios::app) << line;
        state.ResumeTiming();
        benchmark::DoNotOptimize(reader.stats(path));
    }
}
BENCHMARK(readAppendedLine)->Iterations(1000);

void readTailOfOversizedTranscript(benchmark::State& state) {
    const std::string path = home().folder + "/oversized.jsonl";
    std::ofstream stream(path, std::ios::binary);
    const auto& source = home().largestTranscript().transcriptPath;
    while (stream.tellp() <= std::streamoff{TranscriptReader::fullScanLimit}) {
        stream << std::ifstream(source, std::ios::binary).rdbuf();
    }
    stream.close();
    for (auto _ : state) {
        TranscriptReader reader(Paths::projectsDir());
        benchmark::DoNotOptimize(reader.stats(path));
    }
    state.SetBytesProcessed(state.iterations() * std::int64_t{TranscriptReader::tailWindow});
}
BENCHMARK(readTailOfOversizedTranscript);

void loadUnchangedStatusFiles(benchmark::State& state) {
    home();
    SkipTally skipped;
    for (auto _ : state) {
        benchmark::DoNotOptimize(StatusStore::load(Paths::statusDir(), skipped));
    }
}
BENCHMARK(loadUnchangedStatusFiles);

void loadStatusFilesAnew(benchmark::State& state) {
    // A new date makes every file a changed one.
    home();
    SkipTally skipped;
    auto modified = std::filesystem::file_time_type::clock::now();
    for (auto _ : state) {
        state.PauseTiming();
        modified += std::chrono::seconds(1);
        for (const auto& entry : listDirectory(Paths::statusDir(), ".json")) {
            std::filesystem::last_write_time(joinPath(Paths::statusDir(), entry.name), modified);
        }
        state.ResumeTiming();
        benchmark::DoNotOptimize(StatusStore::load(Paths::statusDir(), skipped));
    }
}
BENCHMARK(loadStatusFilesAnew);

/// The first 10,000 points of the generated history, in a file of their own.
std::string usageHistory() {
    const std::string path = home().folder + "/plan-usage-history.json";
    auto history = parseJson(readRegularFile(Paths::usageHistoryFile(), 1 << 24).value());
    Json& samples = history.value().at("samples");
    if (samples.size() < 10'000) std::abort();
    samples.erase(samples.begin() + 10'000, samples.end());
    std::ofstream(path) << encodeJson(*history);
    return path;
}

void readUsageHistoryCold(benchmark::State& state) {
    const std::string path = usageHistory();
    for (auto _ : state) {
        UsageHistoryStore store(path);
        benchmark::DoNotOptimize(store.samples());
    }
}
BENCHMARK(readUsageHistoryCold)->Unit(benchmark::kMicrosecond);

void readUsageHistoryWarm(benchmark::State& state) {
    UsageHistoryStore store(usageHistory());
    store.samples();
    for (auto _ : state)
        benchmark::DoNotOptimize(store.samples());
}
BENCHMARK(readUsageHistoryWarm)->Unit(benchmark::kMicrosecond);

void deriveWindows(benchmark::State& state) {
    const auto samples = UsageHistoryStore(usageHistory()).samples();
    const Calendar calendar = currentCalendar();
    const Date now = samples->back().date;
    for (auto _ : state) {
        benchmark::DoNotOptimize(UsageHistoryStore::fiveHourWindow(*samples, now, {}, calendar));
        benchmark::DoNotOptimize(UsageHistoryStore::sevenDayWindow(*samples, now, calendar));
    }
}
BENCHMARK(deriveWindows)->Unit(benchmark::kMicrosecond);

void collectWarm(benchmark::State& state) {
    home();
    InMemoryUserDefaults defaults;
    const FleetSnapshot::Input input = Settings(defaults).snapshotInput();
    MachineSources machine;
    const FleetSnapshot::Sources sources = machine.sources();
    FleetSnapshot::Shared shared;
    FleetSnapshot::collect(input, sources, shared, currentDate());
    for (auto _ : state) {
        benchmark::DoNotOptimize(FleetSnapshot::collect(input, sources, shared, currentDate()));
    }
}
BENCHMARK(collectWarm)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace fleetwise
