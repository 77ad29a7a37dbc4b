#pragma once

#include "foundation/date.h"
#include "sources/file_cache.h"

#include <mutex>
#include <optional>
#include <string>

namespace fleetwise {

/// Claude Code's rate-limit records: when a limit is hit, a transcript gets a record whose
/// `quotaLimits` block names the exact reset. Any thread.
class QuotaNotice {
public:
    struct Notice {
        Date resetsAt;
        std::optional<std::string> windowKind;  ///< "five_hour", "seven_day" …
        Date seenAt;                            ///< time of the record

        bool operator==(const Notice&) const = default;
    };

    static constexpr std::size_t tailSize = 262'144;  ///< of each transcript, in bytes
    static constexpr Seconds shortestRest{60};        ///< between two searches

    QuotaNotice() = default;

    /// That of this process.
    static QuotaNotice& shared();

    /// The notice with the latest `seenAt` below `root`, in transcripts written to no longer than
    /// `windowLength` ago; none of the future. Searches once a minute at most, and remembers what
    /// it found; who asks during a search gets what the one before found.
    std::optional<Notice> aktuelle(const std::string& root, Date now, Seconds windowLength);

    /// The window end to use: the notice's where it is of the five-hour window, was seen within
    /// the last window length and lies ahead by at most that; otherwise the derived one.
    static std::optional<Date> korrigiert(std::optional<Date> derived,
                                          const std::optional<Notice>& notice, Date now,
                                          Seconds windowLength);

    /// The lines that begin in the last tailSize bytes of the file; nothing where it cannot be
    /// read.
    static std::string schwanz(const std::string& file);

private:
    std::optional<Notice> search(const std::string& root, Date now, Seconds windowLength);

    FileCache<std::optional<Notice>> transcripts;  ///< the latest notice at the end of each
    std::mutex lock;
    std::optional<Notice> remembered;  ///< guarded by `lock`
    std::optional<Date> rememberedAt;  ///< when its search began; guarded by `lock`
    std::string rememberedRoot;        ///< guarded by `lock`
};

}  // namespace fleetwise
