#pragma once

#include "usage/usage_sample.h"

#include <memory>
#include <mutex>
#include <optional>
#include <string>

namespace fleetwise {

/// The quota figures that Claude Code was told, one sample for each time it was: for a machine
/// without the desktop app's history. Kept in a file of our own in the history's format, 14 days of
/// it. The folder must exist. Any thread.
class OwnSampleStore {
public:
    static constexpr Seconds keptFor{14 * 86'400};
    /// A sample of the desktop app this near stands for one of ours.
    static constexpr Seconds sameMeasurement{300};

    explicit OwnSampleStore(std::string givenPath);

    /// The samples with `latest`, which is written down where it is new: not of the future, and of
    /// no date that is known. A file that cannot be written is tried again with the next one, a
    /// damaged one begins anew.
    std::shared_ptr<const UsageSamples> add(const std::optional<UsageSample>& latest, Date now);

    /// `own` by time among `history`, without those that the history has as well. Ours name no
    /// account: not for a history of several.
    static UsageSamples merged(const UsageSamples& history, const UsageSamples& own);

private:
    const std::string path;
    std::mutex lock;
    std::shared_ptr<const UsageSamples> known;  ///< guarded by `lock`; null until it was read
};

}  // namespace fleetwise
