#include "sources/thread_name_index.h"

#include "foundation/directory.h"
#include "foundation/regular_file.h"

namespace fleetwise {

namespace {

constexpr std::size_t longestIndex = 16 << 20;

}  // namespace

std::shared_ptr<const CodexStore::ThreadNames> threadNamesOf(
    const std::string& codexDirectory, FileCache<CodexStore::ThreadNames>& cache,
    SkipTally& skipped) {
    static const auto none = std::make_shared<const CodexStore::ThreadNames>();
    const std::string path = joinPath(codexDirectory, "session_index.jsonl");
    const auto entry = inspectFile(path);
    if (!entry) return none;
    const FoundFile file{.path = path, .name = entry->name, .stamp = entry->stamp};
    const auto values = cache.load({file}, [&](const FoundFile& found, const auto&) {
        const auto contents = readRegularFile(found.path, longestIndex);
        if (!contents) skipped.count(contents.error());
        return contents ? std::make_shared<const CodexStore::ThreadNames>(
                              CodexStore::threadNames(*contents))
                        : nullptr;
    });
    return values.front() ? values.front() : none;
}

}  // namespace fleetwise
