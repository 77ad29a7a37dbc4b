#include "cost/cost_scan.h"

#include "cost/fork_families.h"

#include <algorithm>

namespace fleetwise {

namespace {

/// What was known to be shared and still is, for the trail that was now read.
std::vector<Beginning> keptBeginnings(const SessionCost& before, const RequestTrail& trail) {
    std::vector<Beginning> kept;
    for (const Beginning& beginning : before.beginnings) {
        const bool isStillThere =
            beginning.requests <= trail.size() && beginning.end == trail.end(beginning.requests);
        if (isStillThere) kept.push_back(beginning);
    }
    return kept;
}

}  // namespace

CostScan::CostScan(CostCache givenCache, Calendar givenCalendar, CostScanControl& givenControl)
    : cache(std::move(givenCache)), calendar(givenCalendar), control(givenControl) {
    for (const auto& [path, file] : cache.files) {
        std::string& newest = newestRollouts[file.sessionId];
        newest = std::max(newest, path);
    }
}

void CostScan::listClaude(const std::string& projectsDirectory) {
    folders.push_back(projectsDirectory + "/");
    for (auto& [id, files] : claudeCostFiles(projectsDirectory, skipped))
        add({.agent = SessionAgent(), .sessionId = id, .files = std::move(files)});
}

void CostScan::listCodex(const std::string& codexDirectory, Date since) {
    folders.push_back(codexDirectory + "/");
    for (FoundFile& file : codexCostFiles(codexDirectory, since, skipped))
        add({.agent = SessionAgent("codex"), .sessionId = {}, .files = {.own = {std::move(file)}}});
}

void CostScan::add(CostTask task) {
    bool isKnown = true;
    task.files.forEach([&](const FoundFile& file) {
        listed.insert(file.path);
        isKnown = isKnown && isUnchanged(file);
    });
    (isKnown ? known : changed).push_back(std::move(task));
}

bool CostScan::isUnchanged(const FoundFile& file) const {
    const auto found = cache.files.find(file.path);
    return found != cache.files.end() &&
           found->second == fileState(file.stamp, found->second.sessionId);
}

void CostScan::read(unsigned threads, bool completesFamilies) {
    forgetMissingFiles();
    announce();
    for (auto& reading : readCosts(changed, calendar, threads, control)) {
        if (reading) take(std::move(*reading));
    }
    if (completesFamilies || changesCosts) completeFamilies();
}

void CostScan::announce() {
    for (const CostTask& task : changed) {
        control.bytes += task.files.bytes();
        task.files.forEach([&](const FoundFile&) { ++control.files; });
    }
}

/// Their sessions are kept: what they cost stays true.
void CostScan::forgetMissingFiles() {
    const auto isMissing = [&](const auto& file) {
        const bool wasLookedFor = std::ranges::any_of(
            folders, [&](const std::string& folder) { return file.first.starts_with(folder); });
        return wasLookedFor && !listed.contains(file.first);
    };
    changesFiles = std::erase_if(cache.files, isMissing) > 0;
}

void CostScan::take(CostReading reading) {
    skipped += reading.skipped;
    for (const auto& [path, stamp] : reading.files) {
        FileState state = fileState(stamp, reading.sessionId);
        FileState& before = cache.files[path];
        changesFiles = changesFiles || before != state;
        before = std::move(state);
    }
    if (reading.sessionId.empty() || isSuperseded(reading)) return;
    const auto before = cache.sessions.find(reading.sessionId);
    if (before != cache.sessions.end()) {
        reading.cost.beginnings = keptBeginnings(*before->second, reading.cost.trail);
        if (reading.cost.agent.isCodex()) reading.cost.family = before->second->family;
        if (*before->second == reading.cost) return;
    }
    changesCosts = true;
    cache.sessions[reading.sessionId] = std::make_shared<SessionCost>(std::move(reading.cost));
}

/// Of several rollouts of one thread the last one by name counts, which the date leads.
bool CostScan::isSuperseded(const CostReading& reading) {
    if (!reading.cost.agent.isCodex()) return false;
    const std::string& path = reading.files.front().first;
    std::string& newest = newestRollouts[reading.sessionId];
    if (path < newest && listed.contains(newest)) return true;
    newest = path;
    return false;
}

void CostScan::completeFamilies() {
    const bool hasNews =
        ForkFamilies(cache.sessions).complete([this](const std::string& id, std::size_t requests) {
            return readAgain(id, requests);
        });
    changesCosts = changesCosts || hasNews;
}

std::optional<SessionCost> CostScan::readAgain(const std::string& id, std::size_t requests) {
    if (tasks.empty()) indexTasks();
    const auto task = tasks.find(id);
    if (control.isStopping || task == tasks.end()) return {};
    // It is not among the files that were announced.
    CostScanControl beside;
    auto reading = CostReader(calendar, beside).read(*task->second, requests);
    if (!reading) return {};
    return std::move(reading->cost);
}

void CostScan::indexTasks() {
    for (const auto* list : {&known, &changed}) {
        for (const CostTask& task : *list) {
            const auto file = cache.files.find(task.files.own.front().path);
            if (file != cache.files.end()) tasks[file->second.sessionId] = &task;
        }
    }
}

}  // namespace fleetwise
