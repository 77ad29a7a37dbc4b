#pragma once

#include "generator/books.h"

#include <string>
#include <string_view>
#include <vector>

namespace fleetwise::generator {

/// What a forked session's transcript begins with.
struct TranscriptHistory {
    std::string text;      ///< whole lines of the transcript it was copied from
    std::string lastUuid;  ///< of the last record that has one
};

/// The offsets just behind each complete turn of a transcript, records that close it included.
std::vector<std::size_t> turnEnds(std::string_view transcript);

/// What the session `fork` copies: `lines`, whole lines of the transcript of the session
/// `parentId`, as its own. Enters into its book what these lines hold.
TranscriptHistory inherit(std::string_view lines, std::string_view parentId, SessionBook& fork);

}  // namespace fleetwise::generator
