#include "sources/codex_rollouts.h"

#include "sources/thread_name_index.h"

#include <algorithm>
#include <numeric>

namespace fleetwise {

namespace {

/// The end of a line, with the figures or the words that tell it from another; empty where it
/// cannot be read.
std::string textBefore(const RegularFile& file, std::uint64_t offset) {
    constexpr std::uint64_t length = 64;
    std::string text(std::min(length, offset), '\0');
    text.resize(file.read(offset - text.size(), text).value_or(0));
    return text;
}

}  // namespace

CodexRollouts::Listing CodexRollouts::load(const std::string& codexDirectory, const Wish& isWished,
                                           SkipTally& skipped) {
    CodexStore::Files files = CodexStore::files(joinPath(codexDirectory, "sessions"), skipped);
    Listing listing{.rollouts = {}, .otherIds = {}, .compressed = files.compressed.size()};
    for (const FoundFile& file : files.compressed)
        listing.otherIds.insert(CodexStore::idInName(file.name));
    std::vector<FoundFile> wished;
    FilesById others;
    for (FoundFile& file : files.rollouts) {
        if (isWished(file)) {
            wished.push_back(std::move(file));
        } else {
            others.emplace(CodexStore::idInName(file.name), std::move(file));
        }
    }
    const auto values = readWithParents(wished, others, skipped);
    for (const auto& [id, file] : others)
        listing.otherIds.insert(id);
    const auto names = threadNamesOf(codexDirectory, index, skipped);
    list(wished, values, *names, listing, skipped);
    return listing;
}

/// Adds what the files tell to `listing`.
void CodexRollouts::list(const std::vector<FoundFile>& files,
                         const FileCache<Reading>::Values& values,
                         const CodexStore::ThreadNames& names, Listing& listing,
                         SkipTally& skipped) {
    std::unordered_set<std::string_view> listed;  // views into the readings
    listing.rollouts.reserve(files.size());
    for (const std::size_t number : latestFirst(files, values)) {
        const FoundFile& file = files[number];
        const auto& reading = values[number];
        if (reading && reading->start.head) {
            if (!listed.insert(*reading->start.head->sessionId).second) continue;
            CodexRollout rollout = rolloutOf(file, *reading, names);
            if (rollout.kind != RolloutKind::session) listing.otherIds.insert(rollout.sessionId);
            listing.rollouts.push_back(std::move(rollout));
        } else if (reading && file.stamp.sizeBytes > 0) {
            ++skipped.malformed;
        }
    }
}

Date CodexRollouts::lastEventAt(const FoundFile& file, const Reading& reading) {
    return reading.end.tail.lastEventAt.value_or(modificationDate(file.stamp));
}

/// The numbers of the files, by the last event in them.
std::vector<std::size_t> CodexRollouts::latestFirst(const std::vector<FoundFile>& files,
                                                    const FileCache<Reading>::Values& values) {
    std::vector<Date> dates;
    for (std::size_t number = 0; number < files.size(); ++number)
        dates.push_back(values[number] ? lastEventAt(files[number], *values[number]) : Date());
    std::vector<std::size_t> numbers(files.size());
    std::iota(numbers.begin(), numbers.end(), 0U);
    std::sort(numbers.begin(), numbers.end(), [&](std::size_t left, std::size_t right) {
        return dates[left] != dates[right] ? dates[left] > dates[right]
                                           : files[left].name < files[right].name;
    });
    return numbers;
}

/// The readings of `files`, to which are added those of `others` that they come from.
FileCache<CodexRollouts::Reading>::Values CodexRollouts::readWithParents(
    std::vector<FoundFile>& files, FilesById& others, SkipTally& skipped) {
    const auto make = [&](const FoundFile& file, const auto& known) {
        return read(file, known, skipped);
    };
    return readings.load(files, make, [&](const auto& reading) -> std::optional<FoundFile> {
        if (!reading || !reading->start.head || !reading->start.head->parentId) return {};
        auto parent = others.extract(*reading->start.head->parentId);
        return parent ? std::optional(std::move(parent.mapped())) : std::nullopt;
    });
}

/// Whether the file is the one that was read, with nothing done to it but lines appended.
bool CodexRollouts::goesOn(const RegularFile& file, const Reading& known) {
    return known.identity == file.identity() &&
           textBefore(file, known.end.nextLine) == known.lastRead;
}

std::shared_ptr<const CodexRollouts::Reading> CodexRollouts::read(
    const FoundFile& file, const std::shared_ptr<const Reading>& known, SkipTally& skipped) {
    const auto opened = RegularFile::open(file.path);
    if (!opened) {
        skipped.count(opened.error());
        return nullptr;
    }
    Reading reading;
    if (known && goesOn(*opened, *known)) reading = *known;
    reading.identity = opened->identity();

    // A head that has no prompt yet may have been read before all of it was written.
    const auto& head = reading.start.head;
    const bool isHeadWhole =
        head && (head->firstPrompt || reading.end.nextLine >= reading.start.end);
    auto end = RolloutTail::read(*opened, reading.end.nextLine);
    auto start = isHeadWhole ? reading.start : RolloutHead::read(*opened);
    if (!start || !end) {
        skipped.count(start ? end.error() : start.error());
        return nullptr;
    }
    if (start->head && !start->head->sessionId) {
        start->head->sessionId = CodexStore::idInName(file.name);
    }
    reading.start = *std::move(start);
    reading.end.tail = reading.end.tail.followedBy(std::move(end->tail));
    reading.end.nextLine = end->nextLine;
    reading.lastRead = textBefore(*opened, end->nextLine);
    return std::make_shared<const Reading>(std::move(reading));
}

CodexRollout CodexRollouts::rolloutOf(const FoundFile& file, const Reading& reading,
                                      const CodexStore::ThreadNames& names) {
    const RolloutHead& head = *reading.start.head;
    const RolloutTail& tail = reading.end.tail;
    CodexRollout rollout;
    rollout.sessionId = *head.sessionId;
    rollout.cwd = head.cwd;
    if (const auto name = names.find(rollout.sessionId); name != names.end()) {
        rollout.title = name->second;
    }
    rollout.modifiedAt = modificationDate(file.stamp);
    rollout.state = tail.state.value_or(SessionState::idle);
    rollout.startedAt = head.startedAt;
    rollout.lastEventAt = lastEventAt(file, reading);
    rollout.contextTokens = tail.contextTokens.value_or(0);
    rollout.outputTokens = tail.outputTokens.value_or(0);
    rollout.contextWindow = tail.contextWindow ? tail.contextWindow : head.contextWindow;
    rollout.originator = head.originator;
    rollout.source = head.source;
    rollout.kind = head.kind;
    rollout.parentId = head.parentId;
    rollout.stateSince = tail.stateSince;
    rollout.turnStartedAt = tail.turnStartedAt;
    rollout.activity = tail.activity;
    rollout.model = tail.model ? tail.model : head.model;
    rollout.effort = tail.effort;
    rollout.firstPrompt = head.firstPrompt;
    rollout.lastReply = tail.lastReply;
    rollout.failure = tail.failure;
    rollout.fileName = file.name;
    return rollout;
}

}  // namespace fleetwise
