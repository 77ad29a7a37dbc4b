#include "fleet/session_details_reader.h"

#include "foundation/text.h"
#include "sources/codex_store.h"
#include "sources/rollout_prompt.h"

#include <algorithm>
#include <utility>

namespace fleetwise {

namespace {

/// Without blanks around it and cut; nothing where nothing remains.
std::optional<std::string> presentable(const std::optional<std::string>& text) {
    if (!text || trimmed(*text).empty()) return {};
    return shortenedText(trimmed(*text), SessionDetailsReader::longestText);
}

/// Where Codex keeps the session, packed or not: of several files the one written last.
std::optional<std::string> rolloutPath(const std::string& codexDirectory, const std::string& id) {
    SkipTally skipped;
    const auto files = CodexStore::files(joinPath(codexDirectory, "sessions"), skipped);
    std::optional<FoundFile> latest;
    for (const auto* found : {&files.compressed, &files.rollouts}) {
        for (const FoundFile& file : *found) {
            if (CodexStore::idInName(file.name) != id) continue;
            const bool isLater =
                !latest || latest->stamp.modifiedNanoseconds <= file.stamp.modifiedNanoseconds;
            if (isLater) latest = file;
        }
    }
    return latest ? std::optional(latest->path) : std::nullopt;
}

}  // namespace

SessionDetailsReader::SessionDetailsReader(TranscriptReader& givenTranscripts,
                                           TaskListStore& givenTasks,
                                           std::string givenCodexDirectory)
    : transcripts(givenTranscripts),
      tasks(givenTasks),
      codexDirectory(std::move(givenCodexDirectory)) {}

SessionDetails SessionDetailsReader::read(const Session& session) const {
    SessionDetails details;
    if (session.stats) details.message = presentable(session.stats->lastReply);
    if (session.agent.isClaude()) readTranscript(session, details);
    if (session.agent.isCodex()) readRollout(session, details);
    SkipTally skipped;
    details.tasks = tasks.list(session.id, skipped);
    return details;
}

void SessionDetailsReader::readTranscript(const Session& session, SessionDetails& details) const {
    details.transcriptPath = transcripts.transcriptURL(session.id, session.cwd);
    if (!details.transcriptPath) return;
    details.prompt = presentable(transcripts.label(*details.transcriptPath).lastPrompt);
    if (const auto stats = transcripts.stats(*details.transcriptPath)) {
        details.message = presentable(stats->lastReply);
    }
    SkipTally skipped;
    details.subagents = SubagentFiles::list(*details.transcriptPath, skipped);
}

void SessionDetailsReader::readRollout(const Session& session, SessionDetails& details) const {
    details.transcriptPath = rolloutPath(codexDirectory, session.id);
    if (!details.transcriptPath || !details.transcriptPath->ends_with(".jsonl")) return;
    const auto file = RegularFile::open(*details.transcriptPath);
    if (!file) return;
    const auto last = lastRolloutPrompt(*file, [](std::string_view prompt) {
        return TranscriptReader::cleanedPrompt(prompt).has_value();
    });
    details.prompt = presentable(TranscriptReader::cleanedPrompt(last));
}

}  // namespace fleetwise
