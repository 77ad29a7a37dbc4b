#include "foundation/file_search.h"

namespace fleetwise {

std::vector<FoundFile> findFiles(const std::string& root, std::string_view prefix) {
    std::vector<FoundFile> found;
    std::vector<std::string> folders{root};
    while (!folders.empty()) {
        const std::string folder = std::move(folders.back());
        folders.pop_back();
        for (DirectoryEntry& entry : listDirectory(folder)) {
            std::string path = joinPath(folder, entry.name);
            if (entry.kind == FileKind::directory) {
                folders.push_back(std::move(path));
            } else if (entry.name.starts_with(prefix)) {
                found.push_back({.path = std::move(path),
                                 .name = std::move(entry.name),
                                 .kind = entry.kind,
                                 .stamp = entry.stamp});
            }
        }
    }
    return found;
}

}  // namespace fleetwise
