#pragma once

#include "foundation/date.h"
#include "foundation/serial_queue.h"
#include "reactions/attention_episode.h"
#include "reactions/fleet_reaction.h"

#include <cstddef>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace fleetwise {

/// Records how long sessions waited for the user: for 90 days, at most 20,000 episodes. The file
/// (see loadAttentionEpisodes) is read and written in the background. One that cannot be read is
/// not written over, but tried again. Any thread.
class AttentionLog final : public FleetReaction {
public:
    using Episode = AttentionEpisode;

    struct Summary {
        Seconds total{0};
        std::size_t count = 0;
        Seconds longest{0};

        bool operator==(const Summary&) const = default;
    };

    struct Day {
        date::year_month_day day;
        Seconds waited{0};  ///< of all sessions together, so it can be more than the day has

        bool operator==(const Day&) const = default;
    };

    static constexpr Seconds shortestEpisode{3};  ///< what passes faster is not recorded

    /// `path` is read when it is first needed.
    AttentionLog(std::string path, Date now);

    void react(const FleetChange& change) override { observe(change.sessions, change.now); }

    /// Follows which of all the sessions wait for the user. An episode ends when its session no
    /// longer waits, waits in another state or is gone. Changes are written at once, but at most
    /// once a minute; the rest follows at a later call.
    void observe(const std::vector<Session>& sessions, Date now);

    /// For the end of the program: ends the open episodes, so that they are not lost, and returns
    /// when everything is written or could not be.
    void flush(Date now);

    /// The finished episodes in the order they were recorded: all, or those that ended at `since`
    /// or after. Waits for the file where it was not read yet.
    std::vector<Episode> episodes(std::optional<Date> since = {});

    /// Those that have not finished, ended as it were at `now`; by session id.
    std::vector<Episode> openEpisodes(Date now);

    static Summary summary(const std::vector<Episode>& episodes);

    /// By project, "" for those without one: the longest total first, then by name.
    static std::vector<std::pair<std::string, Summary>> byProject(
        const std::vector<Episode>& episodes);

    /// Every day of the calendar from that of `since` to that of `now`, the oldest first, with
    /// what fell on it between these two moments. Empty where `since` is after `now`.
    static std::vector<Day> byDay(const std::vector<Episode>& episodes, Date since, Date now,
                                  Calendar calendar);

private:
    struct Open {
        SessionState state;
        std::optional<std::string> project;
        Date began;
    };

    static Episode episodeOf(const std::string& sessionId, const Open& episode, Date now);
    void closeLocked(const std::string& sessionId, const Open& episode, Date now);
    void pruneLocked(Date now);
    void postWriteLocked(Date now);

    /// On the queue: whether the file is read, now or before.
    bool load();

    /// On the queue.
    void write(Date now);

    std::string file;
    Date createdAt;
    std::mutex lock;
    std::map<std::string, Open> open;  ///< by session id; guarded by `lock`
    std::vector<Episode> finished;     ///< guarded by `lock`
    bool didLoad = false;              ///< guarded by `lock`
    bool isDirty = false;              ///< guarded by `lock`
    std::optional<Date> lastWrite;     ///< guarded by `lock`
    SerialQueue queue;  ///< reads and writes the file; last, so that it ends before the rest goes
};

}  // namespace fleetwise
