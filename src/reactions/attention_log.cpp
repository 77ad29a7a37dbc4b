#include "reactions/attention_log.h"

#include <algorithm>
#include <iterator>

namespace fleetwise {

namespace {

constexpr Seconds maximumAge{7'776'000};  // 90 days
constexpr Seconds writeInterval{60};
constexpr std::size_t maximumEpisodes = 20'000;

std::map<std::string, const Session*> sessionsNeedingAttention(
    const std::vector<Session>& sessions) {
    std::map<std::string, const Session*> needy;
    for (const Session& session : sessions) {
        if (demandsAttention(session.state)) needy.emplace(session.id, &session);
    }
    return needy;
}

}  // namespace

AttentionLog::AttentionLog(std::string path, Date now) : file(std::move(path)), createdAt(now) {}

void AttentionLog::observe(const std::vector<Session>& sessions, Date now) {
    const auto needy = sessionsNeedingAttention(sessions);
    const std::lock_guard guard(lock);
    for (auto entry = open.begin(); entry != open.end();) {
        auto& [sessionId, episode] = *entry;
        // Where the clock was set back, the wait is counted from there on.
        episode.began = std::min(episode.began, now);
        const auto found = needy.find(sessionId);
        const bool goesOn = found != needy.end() && found->second->state == episode.state;
        if (!goesOn) closeLocked(sessionId, episode, now);
        entry = goesOn ? std::next(entry) : open.erase(entry);
    }
    for (const auto& [sessionId, session] : needy)
        open.try_emplace(sessionId, Open{session->state, session->cwd, now});
    // A clock that was set back must not put the next write off.
    const bool isDue = !lastWrite || now < *lastWrite || now - *lastWrite >= writeInterval;
    if (isDirty && isDue) postWriteLocked(now);
}

AttentionLog::Episode AttentionLog::episodeOf(const std::string& sessionId, const Open& episode,
                                              Date now) {
    return {.sessionId = sessionId,
            .state = episode.state,
            .project = episode.project,
            .began = episode.began,
            .ended = std::max(now, episode.began)};
}

void AttentionLog::closeLocked(const std::string& sessionId, const Open& episode, Date now) {
    if (now - episode.began < shortestEpisode) return;
    finished.push_back(episodeOf(sessionId, episode, now));
    isDirty = true;
}

void AttentionLog::flush(Date now) {
    {
        const std::lock_guard guard(lock);
        for (const auto& [sessionId, episode] : open)
            closeLocked(sessionId, episode, now);
        open.clear();
        if (isDirty) postWriteLocked(now);
    }
    queue.drain();
}

std::vector<AttentionLog::Episode> AttentionLog::episodes(std::optional<Date> since) {
    bool mustLoad = false;
    {
        const std::lock_guard guard(lock);
        mustLoad = !didLoad;
    }
    if (mustLoad) {
        queue.post([this] { load(); });
        queue.drain();
    }
    const std::lock_guard guard(lock);
    std::vector<Episode> wanted;
    std::copy_if(finished.begin(), finished.end(), std::back_inserter(wanted),
                 [&](const Episode& episode) { return !since || episode.ended >= *since; });
    return wanted;
}

std::vector<AttentionLog::Episode> AttentionLog::openEpisodes(Date now) {
    const std::lock_guard guard(lock);
    std::vector<Episode> waiting;
    for (const auto& [sessionId, episode] : open)
        waiting.push_back(episodeOf(sessionId, episode, now));
    return waiting;
}

void AttentionLog::pruneLocked(Date now) {
    std::erase_if(finished,
                  [&](const Episode& episode) { return now - episode.ended > maximumAge; });
    if (finished.size() > maximumEpisodes) {
        const auto surplus = finished.size() - maximumEpisodes;
        finished.erase(finished.begin(), finished.begin() + static_cast<std::ptrdiff_t>(surplus));
    }
}

void AttentionLog::postWriteLocked(Date now) {
    lastWrite = now;
    queue.post([this, now] { write(now); });
}

bool AttentionLog::load() {
    {
        const std::lock_guard guard(lock);
        if (didLoad) return true;
    }
    auto loaded = loadAttentionEpisodes(file);
    if (!loaded) return false;
    const std::lock_guard guard(lock);
    finished.insert(finished.begin(), std::make_move_iterator(loaded->begin()),
                    std::make_move_iterator(loaded->end()));
    pruneLocked(createdAt);
    didLoad = true;
    return true;
}

void AttentionLog::write(Date now) {
    if (!load()) return;
    std::vector<Episode> snapshot;
    {
        const std::lock_guard guard(lock);
        pruneLocked(now);
        snapshot = finished;
        isDirty = false;
    }
    if (saveAttentionEpisodes(file, snapshot)) return;
    const std::lock_guard guard(lock);
    isDirty = true;
}

}  // namespace fleetwise
