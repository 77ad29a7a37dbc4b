#pragma once

#include "foundation/file_search.h"

#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

namespace fleetwise {

/// What was made of files, kept by their paths and made anew only where a file's date or size has
/// changed. Any thread; the lock is never held while a file is read.
template <typename Value>
class FileCache {
public:
    using Values = std::vector<std::shared_ptr<const Value>>;

    /// The value of each of `files`, in their order. Of a new or changed file it is what `make`
    /// (the file and its last value, null where there is none, to std::shared_ptr<const Value>)
    /// gives; null is not kept, so that the next load tries again. All other files are forgotten.
    template <typename Make>
    Values load(std::vector<FoundFile> files, Make&& make) {
        return load(files, make, [](const auto&) { return std::optional<FoundFile>(); });
    }

    /// As above; `follow` gives of each value, which may be null, the file that it leads to, if
    /// any: that is loaded as well and appended to `files`.
    template <typename Make, typename Follow>
    Values load(std::vector<FoundFile>& files, Make&& make, Follow&& follow) {
        const std::shared_ptr<const Known> known = current();
        Known seen;
        seen.reserve(files.size());
        Values values;
        values.reserve(files.size());
        for (std::size_t number = 0; number < files.size(); ++number) {
            const FoundFile& file = files[number];
            const auto hit = known->find(file.path);
            std::shared_ptr<const Value> value;
            if (hit != known->end()) value = hit->second.value;
            if (!value || hit->second.stamp != file.stamp) value = make(file, value);
            if (value) seen.emplace(file.path, Entry{.stamp = file.stamp, .value = value});
            std::optional<FoundFile> next = follow(value);
            if (next) files.push_back(*std::move(next));
            values.push_back(std::move(value));
        }
        const std::lock_guard guard(lock);
        entries = std::make_shared<const Known>(std::move(seen));
        return values;
    }

private:
    struct Entry {
        FileStamp stamp;
        std::shared_ptr<const Value> value;
    };
    using Known = std::unordered_map<std::string, Entry>;

    std::shared_ptr<const Known> current() {
        const std::lock_guard guard(lock);
        return entries;
    }

    std::mutex lock;
    /// By path; guarded by `lock`. What is handed out is never changed again.
    std::shared_ptr<const Known> entries = std::make_shared<const Known>();
};

}  // namespace fleetwise
