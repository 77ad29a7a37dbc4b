#include "cost/transcript_reader.h"

#include "cost/prompt_text.h"
#include "cost/transcript_lines.h"
#include "cost/transcript_reading_builder.h"
#include "foundation/directory.h"
#include "sources/paths.h"
#include "sources/plain_file_name.h"
#include "sources/project_folder.h"
#include "sources/record_file.h"

#include <algorithm>

namespace fleetwise {

namespace {

using Label = TranscriptReader::Label;
using Reading = TranscriptReader::Reading;

bool isDirectory(const std::string& path) {
    const auto entry = inspectFile(path);
    return entry && entry->kind == FileKind::directory;
}

std::uint64_t sizeOf(const RegularFile& file) {
    return static_cast<std::uint64_t>(file.stamp().sizeBytes);
}

/// Whether `file` is the one that `known` was read from, grown or as it was.
template <typename Known>
bool continues(const std::shared_ptr<const Known>& known, const RegularFile& file) {
    return known && known->identity == file.identity() && sizeOf(file) >= known->offset;
}

/// Adds the whole lines of [begin, end) to `reading`; returns the offset after the last one.
tl::expected<std::uint64_t, FileError> readLines(const RegularFile& file, std::uint64_t begin,
                                                 std::uint64_t end, Reading& reading) {
    TranscriptReadingBuilder builder(std::move(reading));
    const auto offset = LineSplitter(file).forEachLine(
        begin, end, [&](std::string_view line, std::uint64_t) { builder.add(line); });
    reading = builder.finish();
    return offset;
}

/// Reads on where `known` ends, or the whole file.
template <typename Entry>
tl::expected<Entry, FileError> readIncrementally(const RegularFile& file,
                                                 const std::shared_ptr<const Entry>& known) {
    Entry entry{.offset = 0, .size = sizeOf(file), .identity = file.identity(), .facts = {}};
    if (continues(known, file) && known->facts.stats.countsAreComplete) {
        entry.offset = known->offset;
        entry.facts = known->facts;
    }
    const auto offset = readLines(file, entry.offset, entry.size, entry.facts);
    if (!offset) return tl::unexpected(offset.error());
    entry.offset = *offset;
    entry.facts.stats.countsAreComplete = true;
    return entry;
}

/// Reads the end of an oversized file; a line that the window cuts is no JSON object and counts
/// for nothing. Only the figures are taken anew: a federation and the ends of tasks that have
/// left the window stay true.
template <typename Entry>
tl::expected<Entry, FileError> readTail(const RegularFile& file,
                                        const std::shared_ptr<const Entry>& known) {
    Entry entry{.offset = 0, .size = sizeOf(file), .identity = file.identity(), .facts = {}};
    if (continues(known, file)) entry.facts = known->facts;
    entry.facts.stats = {};
    const auto offset =
        readLines(file, entry.size - TranscriptReader::tailWindow, entry.size, entry.facts);
    if (!offset) return tl::unexpected(offset.error());
    entry.offset = *offset;
    return entry;
}

/// Adds what the windows at the beginning and the end of the file hold beyond `known`. Where they
/// meet, or nothing but new lines is to be read, one walk serves both.
template <typename Entry>
tl::expected<Entry, FileError> readLabel(const RegularFile& file,
                                         const std::shared_ptr<const Entry>& known) {
    Entry entry{.offset = 0, .size = sizeOf(file), .identity = file.identity(), .facts = {}};
    if (continues(known, file)) {
        entry.offset = known->offset;
        entry.facts = known->facts;
    }
    constexpr std::uint64_t headEnd = TranscriptReader::labelHeadWindow;
    const std::uint64_t tailBegin =
        entry.size - std::min(entry.size, TranscriptReader::labelTailWindow);

    JsonReader json;
    LineSplitter lines(file);
    const auto add = [&](std::string_view line, std::uint64_t begin) {
        entry.facts.add(
            json, line,
            {.isInHead = begin + line.size() < headEnd, .isInTail = begin >= tailBegin});
    };
    std::uint64_t begin = entry.offset;
    if (std::max(begin, headEnd) < tailBegin) {
        if (begin < headEnd) {
            const auto head = lines.forEachLine(begin, headEnd, add);
            if (!head) return tl::unexpected(head.error());
        }
        begin = tailBegin;
    }
    const auto offset = lines.forEachLine(begin, entry.size, add);
    if (!offset) return tl::unexpected(offset.error());
    entry.offset = *offset;
    return entry;
}

}  // namespace

TranscriptReader& TranscriptReader::shared() {
    static TranscriptReader reader(Paths::projectsDir());
    return reader;
}

/// The cached value of `file`, after `refresh` (opened file and known value to a new value) where
/// the file's size has changed. A file that cannot be read leaves what was known of it.
template <typename Value, typename Refresh>
std::shared_ptr<const Value> TranscriptReader::refreshed(Cache<Value>& cache,
                                                         const TranscriptFile& file,
                                                         Refresh refresh) {
    std::shared_ptr<const Value> known;
    {
        const std::lock_guard guard(lock);
        if (const auto found = cache.find(file.path); found != cache.end()) known = found->second;
    }
    if (known && known->size == static_cast<std::uint64_t>(file.stamp.sizeBytes)) return known;

    const auto opened = RegularFile::open(file.path);
    auto value = opened ? refresh(*opened, known) : tl::unexpected(opened.error());
    if (!value) {
        skip(file.path, value.error());
        return known;
    }
    auto fresh = std::make_shared<const Value>(std::move(*value));
    const std::lock_guard guard(lock);
    cache[file.path] = fresh;
    return fresh;
}

std::optional<Reading> TranscriptReader::read(const TranscriptFile& file) {
    const auto entry = refreshed(entries, file, [](const RegularFile& opened, const auto& known) {
        return sizeOf(opened) <= fullScanLimit ? readIncrementally(opened, known)
                                               : readTail(opened, known);
    });
    return entry && entry->size > 0 ? std::optional(entry->facts) : std::nullopt;
}

std::optional<TranscriptStats> TranscriptReader::stats(const std::string& path) {
    const auto file = inspect(path);
    auto reading = file ? read(*file) : std::nullopt;
    return reading ? std::optional(std::move(reading->stats)) : std::nullopt;
}

Label TranscriptReader::label(const TranscriptFile& file) {
    const auto entry = refreshed(labels, file, [](const RegularFile& opened, const auto& known) {
        return readLabel(opened, known);
    });
    return entry ? entry->facts.label() : Label();
}

Label TranscriptReader::label(const std::string& path) {
    const auto file = inspect(path);
    return file ? label(*file) : Label();
}

std::optional<std::string> TranscriptReader::transcriptURL(const std::string& sessionId,
                                                           const std::optional<std::string>& cwd) {
    if (!isPlainFileName(sessionId)) return {};
    const std::string fileName = sessionId + ".jsonl";
    if (cwd) {
        const std::string folder = joinPath(projects, projectFolderName(*cwd));
        auto expected = joinPath(folder, fileName);
        if (RecordFile::istGewoehnlicheDatei(expected) && isDirectory(folder)) return expected;
    }
    std::optional<std::string> located;
    {
        const std::lock_guard guard(lock);
        const auto found = locatedPaths.find(sessionId);
        if (found != locatedPaths.end()) located = found->second;
    }
    if (located && RecordFile::istGewoehnlicheDatei(*located)) return located;
    located = search(fileName);
    if (located) remember(sessionId, *located);
    return located;
}

std::optional<std::string> TranscriptReader::search(const std::string& fileName) {
    for (const auto& folder : listDirectory(projects)) {
        if (folder.kind != FileKind::directory) continue;
        auto path = joinPath(joinPath(projects, folder.name), fileName);
        if (RecordFile::istGewoehnlicheDatei(path)) return path;
    }
    return {};
}

void TranscriptReader::remember(const std::string& sessionId, const std::string& path) {
    const std::lock_guard guard(lock);
    locatedPaths[sessionId] = path;
}

void TranscriptReader::retain(const std::set<std::string>& paths) {
    const std::lock_guard guard(lock);
    std::erase_if(entries, [&](const auto& entry) { return !paths.contains(entry.first); });
    std::erase_if(labels, [&](const auto& entry) { return !paths.contains(entry.first); });
    std::erase_if(locatedPaths, [&](const auto& entry) { return !paths.contains(entry.second); });
}

SkipTally TranscriptReader::takeSkipped() {
    const std::lock_guard guard(lock);
    SkipTally tally;
    for (const auto& [path, error] : std::exchange(skipped, {}))
        tally.count(error);
    return tally;
}

std::optional<std::string> TranscriptReader::cleanedPrompt(std::optional<std::string_view> prompt) {
    return prompt ? PromptText::cleaned(*prompt) : std::nullopt;
}

/// The regular file at `path` as it is now.
std::optional<TranscriptFile> TranscriptReader::inspect(const std::string& path) {
    const auto entry = inspectFile(path);
    if (!entry) return {};
    if (entry->kind != FileKind::regular) {
        skip(path, FileError::notRegular);
        return {};
    }
    return TranscriptFile{.path = path, .stamp = entry->stamp};
}

void TranscriptReader::skip(const std::string& path, FileError error) {
    const std::lock_guard guard(lock);
    skipped[path] = error;
}

}  // namespace fleetwise
