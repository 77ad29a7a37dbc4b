#pragma once

#include "foundation/regular_file.h"

#include <cstddef>

namespace fleetwise {

/// How many files a reader passed over, and why. Readers of other programs' files never fail;
/// what they skipped shows here and in the report. A file that vanished is not counted.
struct SkipTally {
    std::size_t notRegular = 0;  ///< links, folders, FIFOs under a record's name
    std::size_t tooLarge = 0;
    std::size_t unreadable = 0;
    std::size_t malformed = 0;  ///< read, but not a record

    bool operator==(const SkipTally&) const = default;

    std::size_t total() const { return notRegular + tooLarge + unreadable + malformed; }

    void count(FileError error) {
        switch (error) {
            case FileError::missing:
                break;
            case FileError::notRegular:
                ++notRegular;
                break;
            case FileError::tooLarge:
                ++tooLarge;
                break;
            case FileError::unreadable:
                ++unreadable;
                break;
        }
    }

    SkipTally& operator+=(const SkipTally& other) {
        notRegular += other.notRegular;
        tooLarge += other.tooLarge;
        unreadable += other.unreadable;
        malformed += other.malformed;
        return *this;
    }
};

}  // namespace fleetwise
