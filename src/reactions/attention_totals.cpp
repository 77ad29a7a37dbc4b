#include "reactions/attention_log.h"

#include <algorithm>

namespace fleetwise {

namespace {

/// How much of the episode lies between the two moments.
Seconds overlap(const AttentionEpisode& episode, Date from, Date until) {
    return std::max(std::min(episode.ended, until) - std::max(episode.began, from), Seconds(0));
}

}  // namespace

AttentionLog::Summary AttentionLog::summary(const std::vector<Episode>& episodes) {
    Summary summary;
    for (const Episode& episode : episodes) {
        const Seconds length = episode.ended - episode.began;
        summary.total += length;
        summary.longest = std::max(summary.longest, length);
        ++summary.count;
    }
    return summary;
}

std::vector<std::pair<std::string, AttentionLog::Summary>> AttentionLog::byProject(
    const std::vector<Episode>& episodes) {
    std::map<std::string, std::vector<Episode>> grouped;
    for (const Episode& episode : episodes)
        grouped[episode.project.value_or("")].push_back(episode);
    std::vector<std::pair<std::string, Summary>> projects;
    projects.reserve(grouped.size());
    for (const auto& [project, ofProject] : grouped)
        projects.emplace_back(project, summary(ofProject));
    std::stable_sort(projects.begin(), projects.end(), [](const auto& left, const auto& right) {
        return left.second.total > right.second.total;
    });
    return projects;
}

std::vector<AttentionLog::Day> AttentionLog::byDay(const std::vector<Episode>& episodes, Date since,
                                                   Date now, Calendar calendar) {
    std::vector<Day> days;
    if (since > now) return days;
    const date::local_days last = localDay(now, calendar);
    for (date::local_days day = localDay(since, calendar); day <= last; day += date::days(1)) {
        const Date from = std::max(since, startOfDay(day, calendar));
        const Date until = std::min(now, startOfDay(day + date::days(1), calendar));
        Seconds waited{0};
        for (const Episode& episode : episodes)
            waited += overlap(episode, from, until);
        days.push_back({.day = date::year_month_day(day), .waited = waited});
    }
    return days;
}

}  // namespace fleetwise
