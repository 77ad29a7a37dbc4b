#include "foundation/file_stamp.h"

#include <sys/stat.h>

namespace fleetwise {

FileStamp stampOf(const struct ::stat& status) {
#ifdef __APPLE__
    const timespec& modified = status.st_mtimespec;
#else
    const timespec& modified = status.st_mtim;
#endif
    return {.modifiedNanoseconds = std::int64_t{modified.tv_sec} * 1'000'000'000 + modified.tv_nsec,
            .sizeBytes = status.st_size};
}

FileIdentity identityOf(const struct ::stat& status) {
    return {.device = static_cast<std::uint64_t>(status.st_dev),
            .inode = static_cast<std::uint64_t>(status.st_ino)};
}

}  // namespace fleetwise
