#include "cost/cost_files.h"

#include "foundation/utf8.h"

#include <algorithm>
#include <set>
#include <utility>

namespace fleetwise {

namespace {

constexpr std::string_view transcriptSuffix = ".jsonl";
constexpr std::string_view subagentPrefix = "agent-";

bool isTranscript(std::string_view name) {
    return name.size() > transcriptSuffix.size() && name.ends_with(transcriptSuffix);
}

/// Whether the cache file, which is UTF-8, can name it.
bool canBeNamed(std::string_view name) {
    return wellFormedUtf8(name) == name;
}

std::string sessionOf(std::string_view transcriptName) {
    return std::string(transcriptName.substr(0, transcriptName.size() - transcriptSuffix.size()));
}

FoundFile fileIn(const std::string& folder, DirectoryEntry& entry) {
    std::string path = joinPath(folder, entry.name);
    return {.path = std::move(path), .name = std::move(entry.name), .stamp = entry.stamp};
}

void addSubagents(const std::string& folder, CostFiles& files, SkipTally& skipped) {
    for (DirectoryEntry& entry : listDirectory(folder, transcriptSuffix)) {
        if (!entry.name.starts_with(subagentPrefix)) continue;
        if (!canBeNamed(entry.name)) {
            ++skipped.malformed;
        } else if (entry.kind == FileKind::regular) {
            files.subagents.push_back(fileIn(folder, entry));
        } else {
            ++skipped.notRegular;
        }
    }
}

void addProject(const std::string& folder, std::map<std::string, CostFiles>& sessions,
                SkipTally& skipped) {
    std::set<std::string> found;
    std::vector<std::string> foldersOfSessions;
    for (DirectoryEntry& entry : listDirectory(folder)) {
        if (!canBeNamed(entry.name)) {
            ++skipped.malformed;
        } else if (entry.kind == FileKind::directory) {
            foldersOfSessions.push_back(std::move(entry.name));
        } else if (!isTranscript(entry.name)) {
            continue;
        } else if (entry.kind == FileKind::regular) {
            const std::string session = sessionOf(entry.name);
            sessions[session].own.push_back(fileIn(folder, entry));
            found.insert(session);
        } else {
            ++skipped.notRegular;
        }
    }
    for (const std::string& session : foldersOfSessions) {
        const std::string subagents = joinPath(joinPath(folder, session), "subagents");
        if (found.contains(session)) addSubagents(subagents, sessions[session], skipped);
    }
}

void sortByPath(std::vector<FoundFile>& files) {
    std::ranges::sort(files, {}, &FoundFile::path);
}

}  // namespace

std::uint64_t CostFiles::bytes() const {
    std::uint64_t sum = 0;
    forEach([&](const FoundFile& file) {
        sum += static_cast<std::uint64_t>(std::max<std::int64_t>(file.stamp.sizeBytes, 0));
    });
    return sum;
}

std::map<std::string, CostFiles> claudeCostFiles(const std::string& projectsDirectory,
                                                 SkipTally& skipped) {
    std::map<std::string, CostFiles> sessions;
    for (const DirectoryEntry& project : listDirectory(projectsDirectory)) {
        if (project.kind != FileKind::directory || !canBeNamed(project.name)) continue;
        addProject(joinPath(projectsDirectory, project.name), sessions, skipped);
    }
    for (auto& [session, files] : sessions) {
        sortByPath(files.own);
        sortByPath(files.subagents);
    }
    return sessions;
}

std::vector<FoundFile> codexCostFiles(const std::string& codexDirectory, Date since,
                                      SkipTally& skipped) {
    auto files = findRegularFiles(joinPath(codexDirectory, "sessions"), "rollout-",
                                  {transcriptSuffix}, skipped);
    std::erase_if(files, [&](const FoundFile& file) {
        return modificationDate(file.stamp) < since || !canBeNamed(file.path);
    });
    sortByPath(files);
    return files;
}

}  // namespace fleetwise
