#pragma once

#include "cost/cost_cache.h"
#include "cost/cost_scan_control.h"
#include "cost/session_cost.h"
#include "foundation/date.h"
#include "foundation/skip_tally.h"

#include <memory>
#include <mutex>
#include <optional>
#include <string>

namespace fleetwise {

class CostScan;

/// Knows of every agent session on the machine how many tokens of which kind each model used and
/// what the agent billed. It reads a file again only where its size or modification time changed,
/// and keeps what it knows in a cache file. Any thread.
class CostStore {
public:
    using Session = SessionCost;

    struct Places {
        std::string projectsDirectory;  ///< Claude Code's transcripts
        std::string codexDirectory;     ///< ~/.codex
        std::string cacheFile;
    };

    /// When the cache file is written after a scan that changed something.
    enum class Saving { atOnce, later };

    /// How far a running scan has come.
    struct Progress {
        std::size_t files = 0;
        std::size_t filesDone = 0;
        std::uint64_t bytes = 0;
        std::uint64_t bytesDone = 0;

        bool operator==(const Progress&) const = default;
    };

    /// What a scan did.
    struct Scan {
        bool hasRun = false;      ///< or another one was running, or all are stopped
        bool hasChanged = false;  ///< what the sessions cost
        std::size_t filesRead = 0;
        SkipTally skipped;
    };

    /// How far back Codex's rollouts are read.
    static constexpr Seconds codexHistory{2'592'000};

    /// Days are those of the calendar. Scans run on `givenThreads` threads; 0 for all cores.
    CostStore(Places givenPlaces, Calendar givenCalendar, unsigned givenThreads = 0);

    /// That of this process, at the usual places.
    static CostStore& shared();

    /// Reads what has changed. Takes as long as that takes, so not for the main thread. At once
    /// done where another scan is running.
    Scan refresh(Date now, bool includesCodex, Saving saving = Saving::atOnce);

    /// Writes the cache file if a scan has left that for later.
    void save();

    /// Ends the scan that runs as soon as may be, keeping what it has read, and all later ones.
    void stop() { control.isStopping = true; }

    /// Nothing while no scan runs.
    std::optional<Progress> progress() const;

    /// Of the scan that runs or has run last.
    Progress lastProgress() const;

    /// What is known of all sessions, as of the last scan. It does not change afterwards.
    std::shared_ptr<const SessionCosts> sessions() const;

    /// Nothing for a session that no scan has found.
    std::shared_ptr<const Session> session(const std::string& id) const;

    /// How the reports of all sessions together compare with the book, as SessionCost::priceVerdict
    /// tells it.
    std::optional<Prices::Verdict> priceVerdict(const Prices::Book& book = Prices::current()) const;

private:
    void load(Date now);
    void adopt(CostScan& scan);

    const Places places;
    const Calendar calendar;
    const unsigned threads;
    CostScanControl control;

    std::mutex writer;  ///< held while the cache file is written, and taken before `lock`
    mutable std::mutex lock;
    CostCache store;                                ///< files; guarded by `lock`, as all below
    std::shared_ptr<const SessionCosts> published;  ///< its sessions
    bool didLoad = false;
    bool isScanning = false;
    bool isUnsaved = false;
};

}  // namespace fleetwise
