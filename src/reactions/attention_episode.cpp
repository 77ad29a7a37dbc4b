#include "reactions/attention_episode.h"

#include "foundation/atomic_file.h"
#include "foundation/json.h"

#include <filesystem>

namespace fleetwise {

namespace {

constexpr int fileVersion = 1;
constexpr std::size_t maximumFileBytes = 32 << 20;

std::optional<AttentionEpisode> decodedEpisode(const Json& entry) {
    auto sessionId = member<std::string>(entry, "sessionId");
    const auto state = sessionStateFrom(member<std::string>(entry, "state").value_or(""));
    const auto began = member<Date>(entry, "began");
    const auto ended = member<Date>(entry, "ended");
    if (!sessionId || sessionId->empty() || !state || !demandsAttention(*state)) return {};
    if (!began || !ended || *ended < *began) return {};
    return AttentionEpisode{.sessionId = *std::move(sessionId),
                            .state = *state,
                            .project = member<std::string>(entry, "project"),
                            .began = *began,
                            .ended = *ended};
}

Json encodedEpisode(const AttentionEpisode& episode) {
    Json entry = {{"sessionId", episode.sessionId},
                  {"state", rawValue(episode.state)},
                  {"began", internetDate(episode.began)},
                  {"ended", internetDate(episode.ended)}};
    if (episode.project) entry["project"] = *episode.project;
    return entry;
}

}  // namespace

tl::expected<std::vector<AttentionEpisode>, FileError> loadAttentionEpisodes(
    const std::string& path) {
    std::vector<AttentionEpisode> episodes;
    const auto contents = readRegularFile(path, maximumFileBytes);
    if (!contents) {
        const FileError error = contents.error();
        if (error == FileError::missing) return episodes;
        if (error != FileError::tooLarge) return tl::unexpected(error);
    }
    const auto document = contents ? parseJson(*contents) : std::nullopt;
    if (!document || member<int>(*document, "version") != fileVersion) {
        std::error_code ignored;
        std::filesystem::rename(path, path + ".unreadable", ignored);
        return episodes;
    }
    const auto entries = document->find("episodes");
    if (entries == document->end() || !entries->is_array()) return episodes;
    for (const Json& entry : *entries) {
        if (auto episode = decodedEpisode(entry)) episodes.push_back(*std::move(episode));
    }
    return episodes;
}

bool saveAttentionEpisodes(const std::string& path, const std::vector<AttentionEpisode>& episodes) {
    Json entries = Json::array();
    for (const AttentionEpisode& episode : episodes)
        entries.push_back(encodedEpisode(episode));
    const Json document = {{"version", fileVersion}, {"episodes", std::move(entries)}};
    return writeFileAtomically(path, encodeJson(document)).has_value();
}

}  // namespace fleetwise
