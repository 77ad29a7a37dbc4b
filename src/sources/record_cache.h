#pragma once

#include "foundation/directory.h"
#include "foundation/skip_tally.h"

#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace fleetwise {

/// Reads folders of small JSON files, one record a file, and reads a file again only when its
/// modification date or size has changed. Any thread; the lock is never held while a file is read.
template <typename Record>
class RecordCache {
public:
    struct Loaded {
        std::string name;  ///< of the file, with its extension
        FileStamp stamp;
        std::shared_ptr<const Record> record;
    };

    /// What becomes of a file that was a record at the last load and is none now.
    enum class OnFault {
        skip,      ///< as any other fault
        keepLast,  ///< its last record counts on; for files that are not replaced as a whole
    };

    explicit RecordCache(OnFault whatToDo = OnFault::skip) : onFault(whatToDo) {}

    /// Every regular file of `directory` whose name ends in ".json" and that `decode` (padded text
    /// to optional Record) makes a record of, in the folder's order. What is passed over is
    /// counted in `skipped` and tried again the next time. Files that are gone are forgotten.
    template <typename Decode>
    std::vector<Loaded> load(const std::string& directory, std::size_t maximumBytes,
                             SkipTally& skipped, Decode&& decode) {
        const std::shared_ptr<const Folder> known = lookUp(directory);
        Folder seen;
        std::vector<Loaded> loaded;
        for (auto& entry : listDirectory(directory, ".json")) {
            if (entry.kind != FileKind::regular) {
                ++skipped.notRegular;
                continue;
            }
            const auto hit = known->find(entry.name);
            Cached current{.stamp = entry.stamp, .record = nullptr};
            if (hit != known->end() && hit->second.stamp == entry.stamp) {
                current = hit->second;
            } else {
                current.record =
                    read(joinPath(directory, entry.name), maximumBytes, skipped, decode);
            }
            if (!current.record && hit != known->end() && onFault == OnFault::keepLast) {
                current = hit->second;  // with its old stamp, so that the next load tries again
            }
            if (!current.record) continue;
            seen.emplace(entry.name, current);
            loaded.push_back({std::move(entry.name), current.stamp, std::move(current.record)});
        }
        replace(directory, std::move(seen));
        return loaded;
    }

private:
    struct Cached {
        FileStamp stamp;
        std::shared_ptr<const Record> record;
    };
    using Folder = std::unordered_map<std::string, Cached>;

    std::shared_ptr<const Folder> lookUp(const std::string& directory) {
        const std::lock_guard guard(lock);
        const auto found = folders.find(directory);
        return found == folders.end() ? std::make_shared<const Folder>() : found->second;
    }

    void replace(const std::string& directory, Folder seen) {
        const std::lock_guard guard(lock);
        if (seen.empty()) {
            folders.erase(directory);
        } else {
            folders[directory] = std::make_shared<const Folder>(std::move(seen));
        }
    }

    template <typename Decode>
    static std::shared_ptr<const Record> read(const std::string& path, std::size_t maximumBytes,
                                              SkipTally& skipped, Decode&& decode) {
        const auto contents = readRegularFile(path, maximumBytes);
        if (!contents) {
            skipped.count(contents.error());
            return nullptr;
        }
        std::optional<Record> record = decode(std::string_view(*contents));
        if (!record) {
            ++skipped.malformed;
            return nullptr;
        }
        return std::make_shared<const Record>(std::move(*record));
    }

    const OnFault onFault;
    std::mutex lock;
    /// By the folder's path; guarded by `lock`. What is handed out is never changed again.
    std::unordered_map<std::string, std::shared_ptr<const Folder>> folders;
};

}  // namespace fleetwise
