#include "sources/codex_store.h"

#include "foundation/json_reader.h"
#include "foundation/text.h"
#include "sources/codex_rollout.h"

#include <algorithm>
#include <array>

namespace fleetwise {

namespace {

constexpr std::string_view namePrefix = "rollout-";
constexpr std::string_view extension = ".jsonl";
constexpr std::string_view packedExtension = ".jsonl.zst";

/// "2026-11-21T02-04-00-", the local time that the session began.
constexpr std::size_t timeLength = 20;

std::string normalised(const std::optional<std::string>& text) {
    return text ? asciiLowercased(trimmed(*text)) : std::string();
}

bool isTerminalClient(const std::string& originator) {
    constexpr std::array<std::string_view, 3> clients{"codex-tui", "codex_exec", "codex_cli_rs"};
    return std::find(clients.begin(), clients.end(), originator) != clients.end();
}

}  // namespace

bool CodexStore::isAvailable(const std::string& sessionsDirectory) {
    // By way of ".", for the folder itself may be a link that its user made.
    const auto entry = inspectFile(joinPath(sessionsDirectory, "."));
    return entry && entry->kind == FileKind::directory;
}

CodexStore::Files CodexStore::files(const std::string& sessionsDirectory, SkipTally& skipped) {
    Files files;
    for (FoundFile& file :
         findRegularFiles(sessionsDirectory, namePrefix, {extension, packedExtension}, skipped)) {
        const bool isPacked = file.name.ends_with(packedExtension);
        (isPacked ? files.compressed : files.rollouts).push_back(std::move(file));
    }
    return files;
}

bool CodexStore::isRolloutName(std::string_view fileName) {
    return fileName.starts_with(namePrefix) && fileName.ends_with(extension);
}

std::string CodexStore::idInName(std::string_view fileName) {
    for (const std::string_view ending : {packedExtension, extension}) {
        if (fileName.ends_with(ending)) fileName.remove_suffix(ending.size());
    }
    if (fileName.starts_with(namePrefix)) fileName.remove_prefix(namePrefix.size());
    const bool hasTime =
        fileName.size() > timeLength && fileName[10] == 'T' && fileName[timeLength - 1] == '-';
    return std::string(hasTime ? fileName.substr(timeLength) : fileName);
}

CodexStore::ThreadNames CodexStore::threadNames(std::string_view padded) {
    ThreadNames names;
    JsonReader json;
    forEachLine(padded, [&](std::string_view line) {
        json.readObject(line, [&](JsonObject& entry) {
            const auto id = memberIfPresent<std::string_view>(entry, "id");
            const auto name = memberIfPresent<std::string_view>(entry, "thread_name");
            if (id && name && !trimmed(*name).empty()) {
                names.insert_or_assign(std::string(*id), std::string(trimmed(*name)));
            }
        });
    });
    return names;
}

std::optional<SessionState> CodexStore::state(std::string_view eventType) {
    if (eventType == "task_started") return SessionState::working;
    if (eventType == "task_complete") return SessionState::done;
    if (eventType == "turn_aborted") return SessionState::idle;
    if (eventType == "error" || eventType == "stream_error") return SessionState::failed;
    return {};
}

bool CodexStore::isDesktop(const std::optional<std::string>& originator) {
    return normalised(originator).find("desktop") != std::string::npos;
}

std::optional<std::string> CodexStore::hostBundleId(const std::optional<std::string>& originator,
                                                    const std::optional<std::string>& source) {
    if (isDesktop(originator)) return "com.openai.codex";
    if (isTerminalClient(normalised(originator))) return {};
    const std::string startedIn = source ? asciiLowercased(*source) : std::string();
    if (startedIn == "vscode") return "com.microsoft.VSCode";
    if (startedIn == "cursor") return "com.todesktop.230313mzl4w4u92";
    return {};
}

std::pair<SessionOrigin, std::optional<std::string>> CodexStore::attribution(
    const Rollout& rollout) {
    return {isDesktop(rollout.originator) ? SessionOrigin::desktop : SessionOrigin::cli,
            hostBundleId(rollout.originator, rollout.source)};
}

}  // namespace fleetwise
