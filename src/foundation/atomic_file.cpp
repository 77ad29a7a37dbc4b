#include "foundation/atomic_file.h"

#include "foundation/directory.h"
#include "foundation/file_descriptor.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstdlib>

namespace fleetwise {

namespace {

tl::unexpected<std::error_code> lastError() {
    return tl::unexpected(std::error_code(errno, std::generic_category()));
}

bool writeAll(int descriptor, std::string_view contents) {
    while (!contents.empty()) {
        const ssize_t written = ::write(descriptor, contents.data(), contents.size());
        if (written < 0 && errno == EINTR) continue;
        if (written < 0) return false;
        contents.remove_prefix(static_cast<std::size_t>(written));
    }
    return true;
}

std::string parentOf(const std::string& path) {
    const auto slash = path.find_last_of('/');
    if (slash == std::string::npos) return ".";
    return slash == 0 ? "/" : path.substr(0, slash);
}

/// Removes the temporary file unless it has reached its place.
class TemporaryFile {
public:
    explicit TemporaryFile(const std::string& target) : path(target + std::string(ending)) {
        descriptor = FileDescriptor(::mkostemp(path.data(), O_CLOEXEC));
    }
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;
    ~TemporaryFile() {
        if (descriptor && !isInPlace) ::unlink(path.c_str());
    }

    /// Of its name, with random letters in place of the X.
    static constexpr std::string_view ending = ".XXXXXX";

    std::string path;
    FileDescriptor descriptor;
    bool isInPlace = false;
};

}  // namespace

tl::expected<void, std::error_code> writeFileAtomically(const std::string& path,
                                                        std::string_view contents, unsigned mode) {
    TemporaryFile temporary(path);
    if (!temporary.descriptor) return lastError();
    const int descriptor = temporary.descriptor.get();
    if (::fchmod(descriptor, static_cast<mode_t>(mode)) != 0) return lastError();
    if (!writeAll(descriptor, contents) || ::fsync(descriptor) != 0) return lastError();
    if (::rename(temporary.path.c_str(), path.c_str()) != 0) return lastError();
    temporary.isInPlace = true;
    const FileDescriptor folder(::open(parentOf(path).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (folder && ::fsync(folder.get()) != 0) return lastError();
    return {};
}

void removeAbandonedFiles(const std::string& path, Date before) {
    const std::string folder = parentOf(path);
    const std::string prefix = path.substr(path.find_last_of('/') + 1) + ".";
    for (const DirectoryEntry& entry : listDirectory(folder)) {
        const bool isOurs = entry.kind == FileKind::regular && entry.name.starts_with(prefix) &&
                            entry.name.size() == prefix.size() + TemporaryFile::ending.size() - 1;
        if (isOurs && modificationDate(entry.stamp) < before) {
            ::unlink(joinPath(folder, entry.name).c_str());
        }
    }
}

tl::expected<void, std::error_code> makePrivateDirectory(const std::string& path) {
    if (::mkdir(path.c_str(), 0700) == 0) return {};
    if (errno == ENOENT && parentOf(path) != path) {
        if (auto parent = makePrivateDirectory(parentOf(path)); !parent) return parent;
        if (::mkdir(path.c_str(), 0700) == 0) return {};
    }
    if (errno != EEXIST) return lastError();
    struct ::stat status {};
    if (::stat(path.c_str(), &status) != 0) return lastError();
    if (!S_ISDIR(status.st_mode)) {
        return tl::unexpected(std::make_error_code(std::errc::not_a_directory));
    }
    return {};
}

}  // namespace fleetwise
