#include "fleet/archive_reader.h"

#include "foundation/atomic_file.h"
#include "foundation/directory.h"
#include "foundation/regular_file.h"
#include "sources/rollout_head.h"
#include "sources/session_history.h"
#include "sources/thread_name_index.h"

#include <filesystem>
#include <optional>
#include <utility>

namespace fleetwise {

namespace {

constexpr std::size_t longestTitlesFile = 128 << 20;

std::shared_ptr<const PromptHistory::Prompts> promptsIn(const std::string& path,
                                                        FileCache<PromptHistory::Prompts>& cache,
                                                        SkipTally& skipped) {
    static const auto none = std::make_shared<const PromptHistory::Prompts>();
    const auto file = inspectFile(path);
    if (!file) return none;
    const auto values = cache.load(
        {FoundFile{.path = path, .name = file->name, .stamp = file->stamp}},
        [&](const FoundFile& found, const auto&) {
            auto prompts = PromptHistory::read(found.path, skipped);
            return prompts ? std::make_shared<const PromptHistory::Prompts>(*std::move(prompts))
                           : nullptr;
        });
    return values.front() ? values.front() : none;
}

bool canBeListed(const std::string& folder) {
    std::error_code error;
    const std::filesystem::directory_iterator listing(folder, error);
    return !error;
}

void setFile(ArchiveEntry& entry, std::string path, const FileStamp& stamp) {
    entry.path = std::move(path);
    entry.stamp = stamp;
    entry.sizeBytes = static_cast<std::uint64_t>(std::max<std::int64_t>(0, stamp.sizeBytes));
    entry.lastActivityAt = std::max(entry.lastActivityAt, modificationDate(stamp));
}

void describeByDesktop(ArchiveEntry& entry, const DesktopMetadata& metadata) {
    entry.origin = SessionOrigin::desktop;
    if (metadata.title) entry.title = archiveText(*metadata.title);
    entry.cwd = metadata.cwd.value_or("");
    entry.model = metadata.model;
    entry.lastActivityAt = std::max(entry.lastActivityAt, metadata.lastActivityAt.value_or(Date()));
}

void describeByPrompt(ArchiveEntry& entry, const PromptHistory::Prompts& prompts) {
    const auto typed = prompts.find(entry.id);
    if (typed == prompts.end()) return;
    entry.prompt = typed->second.text;
    if (entry.cwd.empty()) entry.cwd = typed->second.cwd;
}

}  // namespace

ArchiveReader::ArchiveReader(Places givenPlaces, DesktopMetadataStore& givenDesktop)
    : places(std::move(givenPlaces)),
      desktop(givenDesktop),
      transcripts(places.projectsDirectory) {}

std::vector<ArchiveEntry> ArchiveReader::list(Date now) {
    loadTitles();
    std::vector<ArchiveEntry> entries;
    addClaude(entries);
    addCodex(entries);
    forgetAllBut(entries);
    std::erase_if(entries, [this](ArchiveEntry& entry) { return !describe(entry); });
    joinForks(entries);
    saveOnceInAWhile(now);
    return entries;
}

void ArchiveReader::loadTitles() {
    if (std::exchange(hasLoaded, true)) return;
    const auto text = readRegularFile(places.titlesFile, longestTitlesFile);
    auto known = text ? decodeArchiveTitles(*text) : std::nullopt;
    const std::lock_guard guard(lock);
    if (known) titles = *std::move(known);
}

void ArchiveReader::addClaude(std::vector<ArchiveEntry>& entries) {
    SkipTally skipped;
    const auto files = SessionHistory::transcripts(places.projectsDirectory, skipped);
    const auto metadata = desktop.load(places.desktopDirectory, skipped);
    const auto prompts = promptsIn(places.promptHistoryFile, promptFiles, skipped);
    entries.reserve(files.size() + metadata.size());
    for (const auto& [id, file] : files) {
        ArchiveEntry& entry = entries.emplace_back();
        entry.id = id;
        entry.origin = SessionOrigin::cli;
        if (const auto found = metadata.find(id); found != metadata.end()) {
            describeByDesktop(entry, found->second);
        }
        setFile(entry, file.path, file.stamp);
        describeByPrompt(entry, *prompts);
    }
    for (const auto& [id, found] : metadata) {
        if (files.contains(id)) continue;
        ArchiveEntry& entry = entries.emplace_back();
        entry.id = id;
        entry.isComplete = true;
        describeByDesktop(entry, found);
        describeByPrompt(entry, *prompts);
    }
}

void ArchiveReader::addCodex(std::vector<ArchiveEntry>& entries) {
    SkipTally skipped;
    CodexStore::Files files =
        CodexStore::files(joinPath(places.codexDirectory, "sessions"), skipped);
    const auto names = threadNamesOf(places.codexDirectory, threadNameFiles, skipped);
    std::unordered_map<std::string, std::size_t> listed;
    const auto add = [&](FoundFile& file, bool isComplete) {
        std::string id = CodexStore::idInName(file.name);
        const auto [known, isNew] = listed.emplace(id, entries.size());
        if (!isNew) {
            ArchiveEntry& earlier = entries[known->second];
            if (earlier.stamp.modifiedNanoseconds >= file.stamp.modifiedNanoseconds) return;
            earlier.isComplete = isComplete;
            setFile(earlier, std::move(file.path), file.stamp);
            return;
        }
        ArchiveEntry& entry = entries.emplace_back();
        entry.id = std::move(id);
        entry.agent = SessionAgent("codex");
        entry.isComplete = isComplete;
        if (const auto name = names->find(entry.id); name != names->end()) {
            entry.title = archiveText(name->second);
        }
        setFile(entry, std::move(file.path), file.stamp);
    };
    entries.reserve(entries.size() + files.rollouts.size() + files.compressed.size());
    for (FoundFile& file : files.rollouts)
        add(file, false);
    // Of one that is packed away only its name can be read.
    for (FoundFile& file : files.compressed)
        add(file, true);
}

/// Adds what is remembered of the entry's file; false where that is no session's.
bool ArchiveReader::describe(ArchiveEntry& entry) const {
    const auto failed = unreadable.find(entry.path);
    if (failed != unreadable.end() && failed->second == entry.stamp) entry.isComplete = true;
    const std::lock_guard guard(lock);
    const auto found = titles.find(entry.path);
    if (found == titles.end()) return true;
    const ArchiveTitle& known = found->second;
    const bool isCurrent = known.stamp == entry.stamp;
    if (known.isBranch) return false;
    if (entry.title.empty()) entry.title = known.title;
    if (!known.prompt.empty() && (isCurrent || entry.prompt.empty())) entry.prompt = known.prompt;
    if (entry.cwd.empty()) entry.cwd = known.cwd;
    if (!entry.model && !known.model.empty()) entry.model = known.model;
    if (entry.agent.isCodex()) {
        entry.origin = known.isDesktop ? SessionOrigin::desktop : SessionOrigin::cli;
    }
    entry.isComplete = entry.isComplete || isCurrent;
    return true;
}

/// The id of the session that the entry's file continues a copy of; empty for none.
std::string ArchiveReader::parentOf(const ArchiveEntry& entry) const {
    const std::lock_guard guard(lock);
    const auto known = titles.find(entry.path);
    return known == titles.end() ? std::string() : known->second.parent;
}

/// Lets a fork count as activity of the listed session that it comes from, in its place.
void ArchiveReader::joinForks(std::vector<ArchiveEntry>& entries) {
    std::unordered_map<std::string_view, std::size_t> numbers;
    for (std::size_t place = 0; place < entries.size(); ++place) {
        if (entries[place].agent.isCodex()) numbers.emplace(entries[place].id, place);
    }
    std::vector<std::optional<std::size_t>> parents(entries.size());
    for (std::size_t place = 0; place < entries.size(); ++place) {
        const std::string parent = parentOf(entries[place]);
        const auto found = parent.empty() ? numbers.end() : numbers.find(parent);
        if (found != numbers.end()) parents[place] = found->second;
    }
    const auto originOf = [&](std::size_t place) {
        std::size_t origin = place;
        for (std::size_t steps = 0; parents[origin]; ++steps) {
            // A circle.
            if (steps == entries.size()) return place;
            origin = *parents[origin];
        }
        return origin;
    };
    std::vector<ArchiveEntry> kept;
    std::vector<std::size_t> origins;
    for (std::size_t place = 0; place < entries.size(); ++place) {
        origins.push_back(originOf(place));
        Date& latest = entries[origins.back()].lastActivityAt;
        latest = std::max(latest, entries[place].lastActivityAt);
    }
    listedRollouts.clear();
    for (std::size_t place = 0; place < entries.size(); ++place) {
        if (origins[place] != place) continue;
        if (entries[place].agent.isCodex()) listedRollouts.insert(entries[place].id);
        kept.push_back(std::move(entries[place]));
    }
    entries = std::move(kept);
}

void ArchiveReader::forgetAllBut(const std::vector<ArchiveEntry>& entries) {
    std::unordered_set<std::string_view> paths;
    for (const ArchiveEntry& entry : entries)
        paths.insert(entry.path);
    std::erase_if(unreadable, [&](const auto& file) { return !paths.contains(file.first); });
    std::vector<std::string> lostRoots;
    for (const std::string& root :
         {places.projectsDirectory, joinPath(places.codexDirectory, "sessions")}) {
        if (!canBeListed(root)) lostRoots.push_back(joinPath(root, ""));
    }
    const auto isBelow = [](const std::string& path) {
        return [&path](const std::string& root) { return path.starts_with(root); };
    };
    const std::lock_guard guard(lock);
    const auto forgotten = std::erase_if(titles, [&](const auto& known) {
        return !paths.contains(known.first) &&
               std::ranges::none_of(lostRoots, isBelow(known.first));
    });
    hasUnsaved = hasUnsaved || forgotten > 0;
}

std::vector<ArchiveEntry> ArchiveReader::complete(std::vector<ArchiveEntry> portion, Date now) {
    std::erase_if(portion, [this](ArchiveEntry& entry) {
        if (auto title = read(entry)) {
            remember(entry, *std::move(title));
        } else {
            unreadable[entry.path] = entry.stamp;
        }
        entry.isComplete = true;
        if (!describe(entry)) return true;
        // What a fork adds to its session's activity shows with the next listing.
        const std::string parent = parentOf(entry);
        return !parent.empty() && parent != entry.id && listedRollouts.contains(parent);
    });
    transcripts.retain({});
    saveOnceInAWhile(now);
    return portion;
}

void ArchiveReader::remember(ArchiveEntry& entry, ArchiveTitle title) {
    const std::lock_guard guard(lock);
    ArchiveTitle& known = titles[entry.path];
    // Titles that have left what is read of a large file stay known.
    if (title.title.empty()) title.title = known.title;
    // A title that the file itself told makes way for the one it has now.
    if (entry.title == known.title) entry.title.clear();
    known = std::move(title);
    hasUnsaved = true;
}

std::optional<ArchiveTitle> ArchiveReader::read(const ArchiveEntry& entry) {
    return entry.agent.isCodex() ? readRollout(entry) : readTranscript(entry);
}

std::optional<ArchiveTitle> ArchiveReader::readTranscript(const ArchiveEntry& entry) {
    const auto label = transcripts.label({.path = entry.path, .stamp = entry.stamp});
    if (transcripts.takeSkipped().total() > 0) return {};
    return ArchiveTitle{.stamp = entry.stamp,
                        .title = archiveText(label.title.value_or("")),
                        .prompt = archiveText(label.lastPrompt.value_or("")),
                        .cwd = label.cwd.value_or("")};
}

std::optional<ArchiveTitle> ArchiveReader::readRollout(const ArchiveEntry& entry) {
    const auto file = RegularFile::open(entry.path);
    const auto reading = file ? RolloutHead::read(*file) : tl::unexpected(file.error());
    if (!reading) return {};
    ArchiveTitle title{.stamp = entry.stamp};
    if (!reading->head) return title;
    const RolloutHead& head = *reading->head;
    const auto prompt = TranscriptReader::cleanedPrompt(head.firstPrompt);
    title.prompt = archiveText(prompt.value_or(""));
    title.cwd = head.cwd.value_or("");
    title.model = head.model.value_or("");
    title.isDesktop = CodexStore::isDesktop(head.originator);
    title.isBranch = head.kind == RolloutKind::subagent;
    if (head.kind == RolloutKind::fork) title.parent = head.parentId.value_or("");
    return title;
}

void ArchiveReader::saveOnceInAWhile(Date now) {
    // A clock that was set back must not make this wait.
    if (now >= saved && now - saved < savingInterval) return;
    saved = now;
    flush();
}

void ArchiveReader::flush() {
    ArchiveTitles known;
    {
        const std::lock_guard guard(lock);
        if (!std::exchange(hasUnsaved, false)) return;
        known = titles;
    }
    // Where that fails, everything is read again at the next start.
    (void)writeFileAtomically(places.titlesFile, encodeArchiveTitles(known));
}

}  // namespace fleetwise
