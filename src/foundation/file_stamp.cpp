#include "foundation/file_stamp.h"

#include "foundation/saturating.h"

#include <sys/stat.h>

#include <limits>

namespace fleetwise {

FileStamp stampOf(const struct ::stat& status) {
#ifdef __APPLE__
    const timespec& modified = status.st_mtimespec;
#else
    const timespec& modified = status.st_mtim;
#endif
    // A file may claim any date; those beyond the years 1677 to 2262 look alike.
    std::int64_t nanoseconds = 0;
    if (__builtin_mul_overflow(std::int64_t{modified.tv_sec}, 1'000'000'000, &nanoseconds)) {
        const bool isPast = modified.tv_sec < 0;
        nanoseconds = isPast ? std::numeric_limits<std::int64_t>::min()
                             : std::numeric_limits<std::int64_t>::max();
    }
    return {.modifiedNanoseconds = saturatingSum(nanoseconds, modified.tv_nsec),
            .sizeBytes = status.st_size};
}

FileIdentity identityOf(const struct ::stat& status) {
    return {.device = static_cast<std::uint64_t>(status.st_dev),
            .inode = static_cast<std::uint64_t>(status.st_ino)};
}

}  // namespace fleetwise
