#include "foundation/directory.h"

#include "foundation/file_descriptor.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>

#include <memory>

namespace fleetwise {

namespace {

FileKind kindOf(mode_t mode) {
    if (S_ISREG(mode)) return FileKind::regular;
    if (S_ISDIR(mode)) return FileKind::directory;
    if (S_ISLNK(mode)) return FileKind::link;
    return FileKind::other;
}

FileKind kindOfListed(unsigned char type) {
    switch (type) {
        case DT_DIR:
            return FileKind::directory;
        case DT_LNK:
            return FileKind::link;
        default:
            return FileKind::other;
    }
}

struct CloseDirectory {
    void operator()(DIR* directory) const { ::closedir(directory); }
};

}  // namespace

std::vector<DirectoryEntry> listDirectory(const std::string& path, std::string_view suffix) {
    std::vector<DirectoryEntry> entries;
    const std::unique_ptr<DIR, CloseDirectory> directory(::opendir(path.c_str()));
    if (!directory) return entries;
    const int descriptor = ::dirfd(directory.get());
    while (const dirent* listed = ::readdir(directory.get())) {
        const std::string_view name = listed->d_name;
        if (name == "." || name == ".." || !name.ends_with(suffix)) continue;
        DirectoryEntry entry{
            .name = std::string(name), .kind = kindOfListed(listed->d_type), .stamp = {}};
        if (listed->d_type == DT_REG || listed->d_type == DT_UNKNOWN) {
            struct ::stat status {};
            if (::fstatat(descriptor, listed->d_name, &status, AT_SYMLINK_NOFOLLOW) != 0) continue;
            entry.kind = kindOf(status.st_mode);
            if (entry.kind == FileKind::regular) entry.stamp = stampOf(status);
        }
        entries.push_back(std::move(entry));
    }
    return entries;
}

std::optional<DirectoryEntry> inspectFile(const std::string& path) {
    struct ::stat status {};
    if (::lstat(path.c_str(), &status) != 0) return {};
    DirectoryEntry entry{.name = path.substr(path.find_last_of('/') + 1),
                         .kind = kindOf(status.st_mode),
                         .stamp = {}};
    if (entry.kind == FileKind::regular) entry.stamp = stampOf(status);
    return entry;
}

std::string joinPath(std::string_view folder, std::string_view name) {
    std::string path;
    path.reserve(folder.size() + name.size() + 1);
    path.append(folder);
    if (!path.empty() && path.back() != '/') path.push_back('/');
    path.append(name);
    return path;
}

}  // namespace fleetwise
