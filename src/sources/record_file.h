#pragma once

#include <string>

namespace fleetwise {

/// Which files count as an agent's records.
class RecordFile {
public:
    /// True only for a regular file, judged on the entry itself without following links, so that
    /// a link planted in a watched folder is never followed.
    static bool istGewoehnlicheDatei(const std::string& path);
};

}  // namespace fleetwise
