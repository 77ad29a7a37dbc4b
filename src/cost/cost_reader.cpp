#include "cost/cost_reader.h"

#include "cost/rollout_usage_reader.h"
#include "cost/transcript_usage_reader.h"
#include "foundation/regular_file.h"

#include <algorithm>
#include <numeric>
#include <system_error>
#include <thread>

namespace fleetwise {

namespace {

using Going = LineSearch::Going;

/// The largest first, so that no thread is left alone with it at the end.
std::vector<std::size_t> largestFirst(const std::vector<CostTask>& tasks) {
    std::vector<std::uint64_t> bytes;
    for (const CostTask& task : tasks)
        bytes.push_back(task.files.bytes());
    std::vector<std::size_t> order(tasks.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::ranges::stable_sort(order, std::greater(),
                             [&](std::size_t index) { return bytes[index]; });
    return order;
}

}  // namespace

/// False where the file could not be read to its end.
template <std::size_t Count, typename Visit>
bool CostReader::readFile(const FoundFile& file, const LineMarks<Count>& marks,
                          CostReading& reading, Visit&& visit) {
    const auto opened = RegularFile::open(file.path);
    if (!opened) {
        reading.skipped.count(opened.error());
        return false;
    }
    const auto progress = [this](std::size_t bytes) {
        control.bytesDone += bytes;
        return control.isStopping ? Going::stop : Going::on;
    };
    const auto size = static_cast<std::uint64_t>(opened->stamp().sizeBytes);
    const auto done = lines.forEachMarkedLine(*opened, size, marks, visit, progress);
    if (!done) reading.skipped.count(done.error());
    if (!done || control.isStopping) return false;
    reading.files.emplace_back(file.path, opened->stamp());
    ++control.filesDone;
    return true;
}

std::optional<CostReading> CostReader::read(const CostTask& task, std::size_t limit) {
    return task.agent.isCodex() ? readCodex(task, limit) : readClaude(task, limit);
}

std::optional<CostReading> CostReader::readClaude(const CostTask& task, std::size_t limit) {
    CostReading reading{.sessionId = task.sessionId};
    TranscriptUsageReader usage(calendar, limit);
    const auto readAll = [&](const std::vector<FoundFile>& files,
                             TranscriptUsageReader::Writer writer) {
        for (const FoundFile& file : files) {
            readFile(file, UsageLine::marks, reading,
                     [&](std::string_view line) { return usage.add(line, writer); });
        }
    };
    readAll(task.files.own, TranscriptUsageReader::Writer::session);
    if (reading.files.empty()) return {};
    if (limit == allRequests)
        readAll(task.files.subagents, TranscriptUsageReader::Writer::subagent);
    if (control.isStopping) return {};
    reading.cost = usage.finish();
    return reading;
}

std::optional<CostReading> CostReader::readCodex(const CostTask& task, std::size_t limit) {
    CostReading reading;
    RolloutUsageReader usage =
        limit == allRequests ? RolloutUsageReader(calendar) : RolloutUsageReader(calendar, limit);
    const bool isRead = readFile(task.files.own.front(), RolloutUsageReader::marks, reading,
                                 [&](std::string_view line) {
                                     usage.add(line);
                                     return Going::on;
                                 });
    if (!isRead) return {};
    reading.sessionId = usage.threadId();
    reading.cost = usage.finish();
    return reading;
}

std::vector<std::optional<CostReading>> readCosts(const std::vector<CostTask>& tasks,
                                                  Calendar calendar, unsigned threads,
                                                  CostScanControl& control) {
    std::vector<std::optional<CostReading>> readings(tasks.size());
    const auto order = largestFirst(tasks);
    std::atomic<std::size_t> next = 0;
    const auto work = [&] {
        CostReader reader(calendar, control);
        for (std::size_t turn = next++; turn < order.size() && !control.isStopping; turn = next++)
            readings[order[turn]] = reader.read(tasks[order[turn]]);
    };
    std::vector<std::thread> others;
    try {
        for (std::size_t count = 1; count < std::min<std::size_t>(threads, tasks.size()); ++count)
            others.emplace_back(work);
    } catch (const std::system_error&) {
        // The system has no more threads: those that there are do the work.
    }
    work();
    for (std::thread& thread : others)
        thread.join();
    return readings;
}

}  // namespace fleetwise
