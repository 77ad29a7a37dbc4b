#include "sources/session_history.h"

#include "foundation/directory.h"

#include <algorithm>
#include <tuple>

namespace fleetwise {

namespace {

constexpr std::string_view transcriptSuffix = ".jsonl";

// Older agents wrote their subagents' transcripts beside those of the sessions.
constexpr std::string_view subagentPrefix = "agent-";

bool isOlder(const TranscriptFile& left, const TranscriptFile& right) {
    return std::tie(left.stamp.modifiedNanoseconds, left.path) <
           std::tie(right.stamp.modifiedNanoseconds, right.path);
}

void addTranscripts(const std::string& folder, TranscriptIndex& index, SkipTally& skipped) {
    for (auto& entry : listDirectory(folder, transcriptSuffix)) {
        if (entry.name.size() == transcriptSuffix.size() ||
            entry.name.starts_with(subagentPrefix)) {
            continue;
        }
        if (entry.kind != FileKind::regular) {
            ++skipped.notRegular;
            continue;
        }
        if (entry.stamp.sizeBytes == 0) {
            ++skipped.malformed;
            continue;
        }
        TranscriptFile file{.path = joinPath(folder, entry.name), .stamp = entry.stamp};
        std::string sessionId = std::move(entry.name);
        sessionId.resize(sessionId.size() - transcriptSuffix.size());
        const auto [known, isNew] = index.try_emplace(std::move(sessionId), std::move(file));
        // try_emplace leaves `file` alone where the id is known already.
        if (!isNew && isOlder(known->second, file)) known->second = std::move(file);
    }
}

/// Which sessions are recent enough, or wanted whatever their age.
class Selection {
public:
    Selection(std::optional<Seconds> maxAge, const std::set<std::string>& always, Date now)
        : limit(maxAge), alwaysIncluded(always), reference(now) {}

    bool includes(const std::string& sessionId, Date lastActivityAt, bool isArchived) const {
        const bool isRecent =
            !limit || (limit->count() > 0 && reference - lastActivityAt <= *limit);
        return (isRecent && !isArchived) || alwaysIncluded.contains(sessionId);
    }

private:
    std::optional<Seconds> limit;
    const std::set<std::string>& alwaysIncluded;
    Date reference;
};

SessionHistory::Candidate desktopCandidate(const std::string& sessionId,
                                           const DesktopMetadata& metadata,
                                           const TranscriptFile* transcript, Date lastActivityAt) {
    SessionHistory::Candidate candidate{.sessionId = sessionId,
                                        .cwd = metadata.cwd,
                                        .title = metadata.title,
                                        .model = metadata.model,
                                        .effort = metadata.effort,
                                        .lastActivityAt = lastActivityAt,
                                        .origin = SessionOrigin::desktop,
                                        .transcript = {}};
    if (transcript != nullptr) candidate.transcript = *transcript;
    return candidate;
}

}  // namespace

TranscriptIndex SessionHistory::transcripts(const std::string& projectsDirectory,
                                            SkipTally& skipped) {
    TranscriptIndex index;
    for (const auto& project : listDirectory(projectsDirectory)) {
        if (project.kind == FileKind::directory) {
            addTranscripts(joinPath(projectsDirectory, project.name), index, skipped);
        } else if (project.kind == FileKind::link) {
            ++skipped.notRegular;
        }
    }
    return index;
}

std::vector<SessionHistory::Candidate> SessionHistory::candidates(
    std::optional<Seconds> maxAge, const DesktopSessions& desktopMeta,
    const std::set<std::string>& alwaysInclude, const TranscriptIndex& transcripts, Date now) {
    const Selection selection(maxAge, alwaysInclude, now);
    std::vector<Candidate> found;
    for (const auto& [sessionId, metadata] : desktopMeta) {
        const auto indexed = transcripts.find(sessionId);
        const TranscriptFile* transcript =
            indexed == transcripts.end() ? nullptr : &indexed->second;
        Date lastActivityAt = metadata.lastActivityAt.value_or(Date());
        if (transcript != nullptr) {
            lastActivityAt = std::max(lastActivityAt, modificationDate(transcript->stamp));
        }
        if (selection.includes(sessionId, lastActivityAt, metadata.isArchived)) {
            found.push_back(desktopCandidate(sessionId, metadata, transcript, lastActivityAt));
        }
    }
    for (const auto& [sessionId, transcript] : transcripts) {
        const Date modified = modificationDate(transcript.stamp);
        if (!selection.includes(sessionId, modified, false) || desktopMeta.contains(sessionId)) {
            continue;
        }
        // The desktop app describes its own sessions; what it does not know was started elsewhere.
        Candidate& candidate = found.emplace_back();
        candidate.sessionId = sessionId;
        candidate.lastActivityAt = modified;
        candidate.origin = SessionOrigin::cli;
        candidate.transcript = transcript;
    }
    std::sort(found.begin(), found.end(), [](const Candidate& left, const Candidate& right) {
        return std::tie(right.lastActivityAt, left.sessionId) <
               std::tie(left.lastActivityAt, right.sessionId);
    });
    return found;
}

}  // namespace fleetwise
