#pragma once

#include "cost/cost_cache.h"
#include "cost/cost_files.h"
#include "cost/cost_scan_control.h"
#include "cost/line_search.h"
#include "cost/session_cost.h"
#include "cost/transcript_usage_reader.h"
#include "foundation/date.h"
#include "foundation/skip_tally.h"

#include <cstddef>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace fleetwise {

/// A session whose files are to be read.
struct CostTask {
    SessionAgent agent;
    std::string sessionId;  ///< of a Codex session empty: its file tells
    CostFiles files;
};

/// What a session's files told, and which files as they were.
struct CostReading {
    std::string sessionId;
    SessionCost cost;
    std::vector<std::pair<std::string, FileStamp>> files;
    SkipTally skipped;
};

/// Reads the files of sessions, one session after the other. One object serves one thread.
class CostReader {
public:
    CostReader(Calendar givenCalendar, CostScanControl& givenControl)
        : calendar(givenCalendar), control(givenControl) {}

    /// Only the first `limit` requests of the session's own file count; with a limit its subagents
    /// are left out. Nothing where no file of its own could be read, or the scan is stopping. A
    /// Codex session without an id has no meta line yet.
    std::optional<CostReading> read(const CostTask& task, std::size_t limit = allRequests);

private:
    template <std::size_t Count, typename Visit>
    bool readFile(const FoundFile& file, const LineMarks<Count>& marks, CostReading& reading,
                  Visit&& visit);
    std::optional<CostReading> readClaude(const CostTask& task, std::size_t limit);
    std::optional<CostReading> readCodex(const CostTask& task, std::size_t limit);

    Calendar calendar;
    CostScanControl& control;
    LineSearch lines;
};

/// Reads all tasks on `threads` threads, the calling one among them; in the order of the tasks,
/// with nothing for those that gave nothing. The order of reading does not show in the results.
std::vector<std::optional<CostReading>> readCosts(const std::vector<CostTask>& tasks,
                                                  Calendar calendar, unsigned threads,
                                                  CostScanControl& control);

}  // namespace fleetwise
