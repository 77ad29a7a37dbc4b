#pragma once

#include "cost/transcript_label.h"
#include "cost/transcript_reading.h"
#include "foundation/regular_file.h"
#include "foundation/skip_tally.h"
#include "sources/task_ending.h"
#include "sources/transcript_file.h"

#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>

namespace fleetwise {

/// Reads Claude Code's transcripts, ~/.claude/projects/<folder>/<session>.jsonl: one JSON object a
/// line, appended to while the session runs. What was read is kept per file, so that a file that
/// grew costs only its new bytes and an unchanged one nothing. Any thread.
class TranscriptReader {
public:
    using Stats = TranscriptStats;
    using Label = TranscriptLabel;
    using Reading = TranscriptReading;
    using TaskEnding = fleetwise::TaskEnding;

    /// Files up to this size are read whole, larger ones only at their end.
    static constexpr std::uint64_t fullScanLimit = 16'777'216;
    /// How much of a larger file's end is read.
    static constexpr std::uint64_t tailWindow = 524'288;
    /// How much of a file's end is searched for a title and the last prompt.
    static constexpr std::uint64_t labelTailWindow = 262'144;
    /// How much of a file's beginning is searched for the first prompt.
    static constexpr int labelHeadWindow = 98'304;

    explicit TranscriptReader(std::string projectsDirectory)
        : projects(std::move(projectsDirectory)) {}

    /// The reader of the user's own transcripts.
    static TranscriptReader& shared();

    /// What the file's whole lines tell; an unfinished last line waits for its end. Nothing for an
    /// empty file and one that cannot be read and never was. `file.stamp` decides whether anything
    /// changed since the last call: of an unchanged size nothing is opened.
    std::optional<Reading> read(const TranscriptFile& file);

    /// As `read`, of the regular file at `path` as it is now.
    std::optional<Stats> stats(const std::string& path);

    /// How the session is called; empty for a file that cannot be read. Titles and prompts that
    /// have left the windows since they were seen stay known.
    Label label(const TranscriptFile& file);
    Label label(const std::string& path);

    /// The transcript of a session: in the folder that belongs to `cwd`, else wherever the search
    /// through all folders finds it. Only a find is remembered, for a session that has just begun
    /// has no transcript yet.
    std::optional<std::string> transcriptURL(const std::string& sessionId,
                                             const std::optional<std::string>& cwd);

    /// Spares transcriptURL the search: a listing has found the session's transcript at `path`.
    void remember(const std::string& sessionId, const std::string& path);

    /// Forgets all files but these.
    void retain(const std::set<std::string>& paths);

    /// The files that were not regular or not readable since the last call, each counted once.
    SkipTally takeSkipped();

    /// A user's prompt freed of markers, for display; nothing where nothing of it remains.
    static std::optional<std::string> cleanedPrompt(std::optional<std::string_view> prompt);

private:
    /// What is known of a file, never changed once it is stored.
    template <typename Facts>
    struct Cached {
        std::uint64_t offset = 0;  ///< bytes consumed, just after a newline
        std::uint64_t size = 0;    ///< of the file when it was read
        FileIdentity identity;
        Facts facts;
    };
    using Entry = Cached<Reading>;
    using LabelEntry = Cached<TranscriptLabelFacts>;
    template <typename Value>
    using Cache = std::unordered_map<std::string, std::shared_ptr<const Value>>;

    template <typename Value, typename Refresh>
    std::shared_ptr<const Value> refreshed(Cache<Value>& cache, const TranscriptFile& file,
                                           Refresh refresh);
    std::optional<TranscriptFile> inspect(const std::string& path);
    std::optional<std::string> search(const std::string& fileName);
    void skip(const std::string& path, FileError error);

    const std::string projects;

    std::mutex lock;                                            ///< guards all below
    Cache<Entry> entries;                                       ///< by path
    Cache<LabelEntry> labels;                                   ///< by path
    std::unordered_map<std::string, std::string> locatedPaths;  ///< by session id
    std::unordered_map<std::string, FileError> skipped;         ///< by path
};

}  // namespace fleetwise
