#include "sources/subagent_files.h"

#include "foundation/directory.h"
#include "foundation/json_reader.h"
#include "foundation/text.h"

#include <algorithm>
#include <tuple>
#include <utility>

namespace fleetwise {

namespace {

constexpr std::size_t largestMetaFile = 1 << 18;
constexpr std::size_t descriptionLimit = 400;
constexpr std::string_view transcriptEnding = ".jsonl";

std::string oneLine(JsonObject& object, std::string_view key) {
    const auto text = memberIfPresent<std::string_view>(object, key).value_or("");
    return printable(shortenedText(trimmed(text), descriptionLimit));
}

std::string withoutEnding(std::string_view name) {
    return std::string(name.substr(0, name.size() - transcriptEnding.size()));
}

bool isFolder(const std::string& path) {
    const auto entry = inspectFile(path);
    return entry && entry->kind == FileKind::directory;
}

SubagentFiles::Agent readMeta(const std::string& path, SkipTally& skipped) {
    const auto text = readRegularFile(path, largestMetaFile);
    if (!text) {
        skipped.count(text.error());
        return {};
    }
    auto agent = SubagentFiles::decode(*text);
    if (!agent) ++skipped.malformed;
    return std::move(agent).value_or(SubagentFiles::Agent());
}

}  // namespace

std::optional<SubagentFiles::Agent> SubagentFiles::decode(std::string_view padded) {
    Agent agent;
    JsonReader reader;
    const bool isObject = reader.readObject(padded, [&](JsonObject& object) {
        agent.kind = oneLine(object, "agentType");
        agent.description = oneLine(object, "description");
        agent.isFinished = memberIfPresent<bool>(object, "finished").value_or(false);
    });
    return isObject ? std::optional(std::move(agent)) : std::nullopt;
}

std::vector<SubagentFiles::Agent> SubagentFiles::list(const std::string& transcriptPath,
                                                      SkipTally& skipped) {
    if (!transcriptPath.ends_with(transcriptEnding)) return {};
    const std::string folder = joinPath(withoutEnding(transcriptPath), "subagents");
    if (!isFolder(withoutEnding(transcriptPath)) || !isFolder(folder)) return {};
    auto files = listDirectory(folder, transcriptEnding);
    std::erase_if(files, [&](const DirectoryEntry& file) {
        if (!file.name.starts_with("agent-")) return true;
        if (file.kind != FileKind::regular) ++skipped.notRegular;
        return file.kind != FileKind::regular;
    });
    std::ranges::sort(files, [](const DirectoryEntry& left, const DirectoryEntry& right) {
        return std::tuple(right.stamp.modifiedNanoseconds, left.name) <
               std::tuple(left.stamp.modifiedNanoseconds, right.name);
    });
    files.resize(std::min(files.size(), mostAgents));
    std::vector<Agent> agents;
    for (const DirectoryEntry& file : files) {
        agents.push_back(
            readMeta(joinPath(folder, withoutEnding(file.name) + ".meta.json"), skipped));
        agents.back().lastActivityAt = modificationDate(file.stamp);
    }
    return agents;
}

}  // namespace fleetwise
