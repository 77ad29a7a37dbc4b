// What it takes until past sessions appear, and to look for words in them, with 10,000 of them.

#include "fleet/archive_reader.h"
#include "foundation/virtual_main_loop.h"
#include "generator/generate.h"
#include "monitor/archive_index.h"
#include "ui/archive/archive_search.h"

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <filesystem>
#include <functional>

namespace fleetwise {
namespace {

/// A home of 10,000 sessions that lasts as long as the process, with all titles read once.
class ArchiveHome {
public:
    ArchiveHome() {
        folder = (std::filesystem::temp_directory_path() / "fleetwise-archive-XXXXXX").string();
        if (::mkdtemp(folder.data()) == nullptr) std::abort();
        const generator::Plan plan{
            .sessions = 8000, .megabytes = 200, .live = 20, .desktop = 1000, .rollouts = 2000};
        if (!generator::generate(plan, folder)) std::abort();
        ArchiveReader first = reader(warmTitles());
        first.complete(first.list(currentDate()), currentDate());
        first.flush();
    }
    ArchiveHome(const ArchiveHome&) = delete;
    ArchiveHome& operator=(const ArchiveHome&) = delete;
    ~ArchiveHome() {
        std::error_code ignored;
        std::filesystem::remove_all(folder, ignored);
    }

    std::string warmTitles() const { return folder + "/archive-index.json"; }
    ArchiveReader reader(const std::string& titlesFile) {
        return {{.projectsDirectory = folder + "/.claude/projects",
                 .desktopDirectory = folder + "/.config/Claude/claude-code-sessions",
                 .codexDirectory = folder + "/.codex",
                 .promptHistoryFile = folder + "/.claude/history.jsonl",
                 .titlesFile = titlesFile},
                desktop};
    }

private:
    std::string folder;
    DesktopMetadataStore desktop;
};

ArchiveHome& archiveHome() {
    static ArchiveHome made;
    return made;
}

/// As at the first opening of the window: up to the rows, which have no titles yet.
void listArchiveCold(benchmark::State& state) {
    ArchiveHome& home = archiveHome();
    for (auto _ : state) {
        ArchiveReader reader = home.reader("");
        benchmark::DoNotOptimize(reader.list(currentDate()));
    }
}
BENCHMARK(listArchiveCold)->Unit(benchmark::kMillisecond);

/// As at the first opening after a start of the program: every title comes from our own file.
void listArchiveWithTitles(benchmark::State& state) {
    ArchiveHome& home = archiveHome();
    for (auto _ : state) {
        ArchiveReader reader = home.reader(home.warmTitles());
        benchmark::DoNotOptimize(reader.list(currentDate()));
    }
}
BENCHMARK(listArchiveWithTitles)->Unit(benchmark::kMillisecond);

void readAllTitles(benchmark::State& state) {
    ArchiveHome& home = archiveHome();
    for (auto _ : state) {
        ArchiveReader reader = home.reader("");
        benchmark::DoNotOptimize(reader.complete(reader.list(currentDate()), currentDate()));
    }
}
BENCHMARK(readAllTitles)->Unit(benchmark::kMillisecond);

/// What one typed character asks of the main thread, without the table.
void searchArchive(benchmark::State& state) {
    VirtualMainLoop loop(currentDate());
    ArchiveReader reader = archiveHome().reader(archiveHome().warmTitles());
    ArchiveIndex index(
        loop, {.list = [&](Date now) { return reader.list(now); }, .complete = std::identity()});
    index.refresh();
    loop.finishBackground();
    const ArchiveSearch search("report x7");
    for (auto _ : state) {
        for (const ArchiveEntry& entry : index.entries())
            benchmark::DoNotOptimize(search.matches(entry.searchText, "21.11.2026", "14:02"));
    }
}
BENCHMARK(searchArchive)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace fleetwise
