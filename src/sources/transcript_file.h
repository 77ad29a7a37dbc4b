#pragma once

#include "foundation/file_stamp.h"

#include <string>
#include <unordered_map>

namespace fleetwise {

/// A session's transcript as a listing found it.
struct TranscriptFile {
    std::string path;
    FileStamp stamp;

    bool operator==(const TranscriptFile&) const = default;
};

/// Session id to transcript.
using TranscriptIndex = std::unordered_map<std::string, TranscriptFile>;

}  // namespace fleetwise
