#pragma once

#include "cost/cost_cache.h"
#include "cost/cost_reader.h"
#include "foundation/date.h"
#include "foundation/skip_tally.h"

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <unordered_set>
#include <vector>

namespace fleetwise {

/// One scan: lists files, reads those that have changed, and brings a cache up to date by them.
/// First all folders are listed, then `read` is called once.
class CostScan {
public:
    /// `givenControl` outlives this.
    CostScan(CostCache givenCache, Calendar givenCalendar, CostScanControl& givenControl);

    void listClaude(const std::string& projectsDirectory);

    /// Only the rollouts written since then.
    void listCodex(const std::string& codexDirectory, Date since);

    /// On so many threads. With `completesFamilies` it is found out what forks share also where
    /// nothing was read.
    void read(unsigned threads, bool completesFamilies);

    bool hasChangedCosts() const { return changesCosts; }
    bool hasChangedFiles() const { return changesFiles; }
    const SkipTally& skippedFiles() const { return skipped; }
    CostCache takeCache() { return std::move(cache); }

private:
    void add(CostTask task);
    bool isUnchanged(const FoundFile& file) const;
    void announce();
    void forgetMissingFiles();
    void take(CostReading reading);
    bool isSuperseded(const CostReading& reading);
    void completeFamilies();
    std::optional<SessionCost> readAgain(const std::string& id, std::size_t requests);
    void indexTasks();

    CostCache cache;
    const Calendar calendar;
    CostScanControl& control;
    std::vector<CostTask> known;       ///< as the cache has them
    std::vector<CostTask> changed;     ///< to be read
    std::vector<std::string> folders;  ///< that were listed
    std::unordered_set<std::string> listed;
    std::map<std::string, const CostTask*> tasks;       ///< by session id, once they are needed
    std::map<std::string, std::string> newestRollouts;  ///< path by thread id
    bool changesCosts = false;
    bool changesFiles = false;
    SkipTally skipped;
};

}  // namespace fleetwise
