#pragma once

#include "cost/transcript_reader.h"
#include "fleet/archive_entry.h"
#include "fleet/archive_titles.h"
#include "fleet/prompt_history.h"
#include "sources/codex_store.h"
#include "sources/desktop_metadata_store.h"
#include "sources/file_cache.h"

#include <mutex>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace fleetwise {

/// Lists every session that Claude Code and Codex have left something of, of any age. What was read
/// of a session's file is remembered in a file of our own until that changes.
class ArchiveReader {
public:
    struct Places {
        std::string projectsDirectory;
        std::string desktopDirectory;
        std::string codexDirectory;
        std::string promptHistoryFile;
        std::string titlesFile;  ///< our own
    };

    /// Between two times that the file of our own is written.
    static constexpr Seconds savingInterval{60};

    /// The store outlives this.
    ArchiveReader(Places givenPlaces, DesktopMetadataStore& givenDesktop);

    /// Each session once, in no particular order: what listings, the desktop app's metadata, the
    /// prompt history and our own file tell. No session's file is opened.
    std::vector<ArchiveEntry> list(Date now);

    /// Reads what the listing could not tell from the sessions' files. Those of subagents and of
    /// forks of listed sessions turn out here, and are left out. Never while `list` runs.
    std::vector<ArchiveEntry> complete(std::vector<ArchiveEntry> portion, Date now);

    /// Writes our own file, where there is something new. Any thread.
    void flush();

private:
    void loadTitles();
    void addClaude(std::vector<ArchiveEntry>& entries);
    void addCodex(std::vector<ArchiveEntry>& entries);
    bool describe(ArchiveEntry& entry) const;
    void remember(ArchiveEntry& entry, ArchiveTitle title);
    std::string parentOf(const ArchiveEntry& entry) const;
    void joinForks(std::vector<ArchiveEntry>& entries);
    void forgetAllBut(const std::vector<ArchiveEntry>& entries);
    std::optional<ArchiveTitle> read(const ArchiveEntry& entry);
    std::optional<ArchiveTitle> readTranscript(const ArchiveEntry& entry);
    static std::optional<ArchiveTitle> readRollout(const ArchiveEntry& entry);
    void saveOnceInAWhile(Date now);

    const Places places;
    DesktopMetadataStore& desktop;
    TranscriptReader transcripts;
    FileCache<PromptHistory::Prompts> promptFiles;
    FileCache<CodexStore::ThreadNames> threadNameFiles;
    std::unordered_set<std::string> listedRollouts;  ///< session ids of the last listing
    /// Files that could not be read, by path: tried again only once they have changed.
    std::unordered_map<std::string, FileStamp> unreadable;
    bool hasLoaded = false;
    Date saved;

    mutable std::mutex lock;  ///< guards the following
    ArchiveTitles titles;
    bool hasUnsaved = false;
};

}  // namespace fleetwise
