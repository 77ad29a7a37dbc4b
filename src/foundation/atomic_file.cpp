#include "foundation/atomic_file.h"

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
    explicit TemporaryFile(const std::string& target) : path(target + ".XXXXXX") {
        descriptor = FileDescriptor(::mkostemp(path.data(), O_CLOEXEC));
    }
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;
    ~TemporaryFile() {
        if (descriptor && !isInPlace) ::unlink(path.c_str());
    }

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
