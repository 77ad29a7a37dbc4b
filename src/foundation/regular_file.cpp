#include "foundation/regular_file.h"

#include "foundation/json_reader.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <atomic>
#include <cerrno>

namespace fleetwise {

namespace {

std::atomic<std::uint64_t> countedOpens{0};
std::atomic<std::uint64_t> countedBytes{0};

FileError errorOfOpen(int code) {
    switch (code) {
        case ENOENT:
        case ENOTDIR:
            return FileError::missing;
        case ELOOP:  // a link, under O_NOFOLLOW
        case ENXIO:  // a socket, or a device without a driver
            return FileError::notRegular;
        default:
            return FileError::unreadable;
    }
}

}  // namespace

tl::expected<RegularFile, FileError> RegularFile::open(const std::string& path) {
    RegularFile file;
    file.descriptor = FileDescriptor(
        ::open(path.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC | O_NOCTTY));
    if (!file.descriptor) return tl::unexpected(errorOfOpen(errno));
    struct ::stat status {};
    if (::fstat(file.descriptor.get(), &status) != 0) return tl::unexpected(FileError::unreadable);
    if (!S_ISREG(status.st_mode)) return tl::unexpected(FileError::notRegular);
    file.openedStamp = stampOf(status);
    file.openedIdentity = identityOf(status);
    countedOpens.fetch_add(1, std::memory_order_relaxed);
    return file;
}

tl::expected<std::size_t, FileError> RegularFile::read(std::uint64_t offset,
                                                       std::span<char> into) const {
    std::size_t filled = 0;
    while (filled < into.size()) {
        const ssize_t got = ::pread(descriptor.get(), into.data() + filled, into.size() - filled,
                                    static_cast<off_t>(offset + filled));
        if (got < 0 && errno == EINTR) continue;
        if (got < 0) return tl::unexpected(FileError::unreadable);
        if (got == 0) break;
        filled += static_cast<std::size_t>(got);
    }
    countedBytes.fetch_add(filled, std::memory_order_relaxed);
    return filled;
}

tl::expected<std::string, FileError> readRegularFile(const std::string& path,
                                                     std::size_t maximumBytes) {
    const auto file = RegularFile::open(path);
    if (!file) return tl::unexpected(file.error());
    const auto size = static_cast<std::size_t>(file->stamp().sizeBytes);
    if (size > maximumBytes) return tl::unexpected(FileError::tooLarge);
    std::string contents;
    contents.reserve(size + jsonPadding);
    contents.resize(size);
    const auto got = file->read(0, contents);
    if (!got) return tl::unexpected(got.error());
    contents.resize(*got);
    return contents;
}

ReadCounts readCounts() {
    return {.opens = countedOpens.load(std::memory_order_relaxed),
            .bytes = countedBytes.load(std::memory_order_relaxed)};
}

}  // namespace fleetwise
