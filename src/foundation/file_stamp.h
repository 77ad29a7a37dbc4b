#pragma once

#include "foundation/date.h"

#include <cstdint>

struct stat;

namespace fleetwise {

/// What tells whether a file has changed: compared exactly, so it is kept in the file system's
/// own resolution. Negative sizes mean "not known".
struct FileStamp {
    std::int64_t modifiedNanoseconds = 0;  ///< since 1970-01-01 UTC
    std::int64_t sizeBytes = -1;

    bool operator==(const FileStamp&) const = default;
};

/// Which file it is, whatever its name: another file under an old name has another identity.
struct FileIdentity {
    std::uint64_t device = 0;
    std::uint64_t inode = 0;

    bool operator==(const FileIdentity&) const = default;
};

inline Date modificationDate(const FileStamp& stamp) {
    return dateFromSeconds(static_cast<double>(stamp.modifiedNanoseconds) / 1e9);
}

FileStamp stampOf(const struct ::stat& status);
FileIdentity identityOf(const struct ::stat& status);

}  // namespace fleetwise
