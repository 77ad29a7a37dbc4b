#include "sources/codex_rollouts.h"

#include <algorithm>
#include <tuple>
#include <unordered_map>

namespace fleetwise {

namespace {

constexpr std::size_t longestIndex = 16 << 20;

/// Latest event first; of one session's rollouts only the first.
void sortAndUnify(std::vector<CodexRollout>& rollouts) {
    std::sort(rollouts.begin(), rollouts.end(),
              [](const CodexRollout& left, const CodexRollout& right) {
                  return std::tie(right.lastEventAt, left.sessionId, left.fileName) <
                         std::tie(left.lastEventAt, right.sessionId, right.fileName);
              });
    std::unordered_set<std::string> seen;
    std::erase_if(rollouts, [&](const CodexRollout& rollout) {
        return !seen.insert(rollout.sessionId).second;
    });
}

}  // namespace

CodexRollouts::Listing CodexRollouts::load(const std::string& codexDirectory, const Wish& isWished,
                                           SkipTally& skipped) {
    CodexStore::Files files = CodexStore::files(joinPath(codexDirectory, "sessions"), skipped);
    Listing listing{.rollouts = {}, .sessionIds = {}, .compressed = files.compressed.size()};
    for (const FoundFile& file : files.compressed)
        listing.sessionIds.insert(CodexStore::idInName(file.name));
    std::vector<FoundFile> wished;
    FilesById others;
    for (FoundFile& file : files.rollouts) {
        std::string id = CodexStore::idInName(file.name);
        listing.sessionIds.insert(id);
        if (isWished(file)) {
            wished.push_back(std::move(file));
        } else {
            others.emplace(std::move(id), std::move(file));
        }
    }
    const auto values = readWithParents(wished, others, skipped);
    const auto names = threadNames(joinPath(codexDirectory, "session_index.jsonl"), skipped);
    for (std::size_t number = 0; number < wished.size(); ++number) {
        const FoundFile& file = wished[number];
        const auto& reading = values[number];
        if (reading && reading->head) {
            listing.rollouts.push_back(rolloutOf(file, *reading, *names));
        } else if (reading && file.stamp.sizeBytes > 0) {
            ++skipped.malformed;
        }
    }
    sortAndUnify(listing.rollouts);
    return listing;
}

/// The readings of `files`, to which are added those of `others` that they come from.
FileCache<CodexRollouts::Reading>::Values CodexRollouts::readWithParents(
    std::vector<FoundFile>& files, FilesById& others, SkipTally& skipped) {
    for (;;) {
        auto values = readings.load(files, [&](const FoundFile& file, const auto& known) {
            return read(file, known, skipped);
        });
        const std::size_t before = files.size();
        for (const auto& reading : values) {
            if (!reading || !reading->head || !reading->head->parentId) continue;
            if (auto parent = others.extract(*reading->head->parentId)) {
                files.push_back(std::move(parent.mapped()));
            }
        }
        if (files.size() == before) return values;
    }
}

std::shared_ptr<const CodexRollouts::Reading> CodexRollouts::read(
    const FoundFile& file, const std::shared_ptr<const Reading>& known, SkipTally& skipped) {
    const auto opened = RegularFile::open(file.path);
    if (!opened) {
        skipped.count(opened.error());
        return nullptr;
    }
    Reading reading{.identity = opened->identity(), .nextLine = 0, .head = {}, .tail = {}};
    const auto size = static_cast<std::uint64_t>(opened->stamp().sizeBytes);
    if (known && known->identity == reading.identity && known->nextLine <= size) reading = *known;

    const auto tail = RolloutTail::read(*opened, reading.nextLine);
    auto head = reading.head ? reading.head : RolloutHead::read(*opened);
    if (!tail || !head) {
        skipped.count(tail ? head.error() : tail.error());
        return nullptr;
    }
    reading.head = *std::move(head);
    reading.tail = reading.tail.followedBy(tail->tail);
    reading.nextLine = tail->nextLine;
    return std::make_shared<const Reading>(std::move(reading));
}

CodexRollout CodexRollouts::rolloutOf(const FoundFile& file, const Reading& reading,
                                      const CodexStore::ThreadNames& names) {
    const RolloutHead& head = *reading.head;
    const RolloutTail& tail = reading.tail;
    CodexRollout rollout;
    rollout.sessionId = head.sessionId ? *head.sessionId : CodexStore::idInName(file.name);
    rollout.cwd = head.cwd;
    if (const auto name = names.find(rollout.sessionId); name != names.end()) {
        rollout.title = name->second;
    }
    rollout.modifiedAt = modificationDate(file.stamp);
    rollout.state = tail.state.value_or(SessionState::idle);
    rollout.startedAt = head.startedAt;
    rollout.lastEventAt = tail.lastEventAt.value_or(rollout.modifiedAt);
    rollout.contextTokens = tail.contextTokens.value_or(0);
    rollout.outputTokens = tail.outputTokens.value_or(0);
    rollout.contextWindow = tail.contextWindow ? tail.contextWindow : head.contextWindow;
    rollout.originator = head.originator;
    rollout.source = head.source;
    rollout.kind = head.kind;
    rollout.parentId = head.parentId;
    rollout.stateSince = tail.stateSince;
    rollout.turnStartedAt = tail.turnStartedAt;
    rollout.model = tail.model ? tail.model : head.model;
    rollout.effort = tail.effort;
    rollout.firstPrompt = head.firstPrompt;
    rollout.lastReply = tail.lastReply;
    rollout.failure = tail.failure;
    rollout.fileName = file.name;
    return rollout;
}

std::shared_ptr<const CodexStore::ThreadNames> CodexRollouts::threadNames(const std::string& path,
                                                                          SkipTally& skipped) {
    static const auto none = std::make_shared<const CodexStore::ThreadNames>();
    const auto entry = inspectFile(path);
    if (!entry) return none;
    const FoundFile file{
        .path = path, .name = entry->name, .kind = entry->kind, .stamp = entry->stamp};
    const auto values = index.load({file}, [&](const FoundFile& found, const auto&) {
        const auto contents = readRegularFile(found.path, longestIndex);
        if (!contents) skipped.count(contents.error());
        return contents ? std::make_shared<const CodexStore::ThreadNames>(
                              CodexStore::threadNames(*contents))
                        : nullptr;
    });
    return values.front() ? values.front() : none;
}

}  // namespace fleetwise
