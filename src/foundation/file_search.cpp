#include "foundation/file_search.h"

#include <algorithm>

namespace fleetwise {

std::vector<FoundFile> findRegularFiles(const std::string& root, std::string_view prefix,
                                        std::initializer_list<std::string_view> extensions,
                                        SkipTally& skipped) {
    const auto isSought = [&](std::string_view name) {
        return name.starts_with(prefix) &&
               std::ranges::any_of(extensions,
                                   [&](std::string_view end) { return name.ends_with(end); });
    };
    std::vector<FoundFile> found;
    std::vector<std::string> folders{root};
    while (!folders.empty()) {
        const std::string folder = std::move(folders.back());
        folders.pop_back();
        for (DirectoryEntry& entry : listDirectory(folder)) {
            std::string path = joinPath(folder, entry.name);
            if (entry.kind == FileKind::directory) {
                folders.push_back(std::move(path));
            } else if (!isSought(entry.name)) {
                continue;
            } else if (entry.kind == FileKind::regular) {
                found.push_back(
                    {.path = std::move(path), .name = std::move(entry.name), .stamp = entry.stamp});
            } else {
                ++skipped.notRegular;
            }
        }
    }
    return found;
}

}  // namespace fleetwise
