#pragma once

#include "foundation/date.h"
#include "foundation/json.h"

#include <string>
#include <string_view>

namespace fleetwise::demo {

/// What the desktop app keeps about one of its sessions, which it writes anew with each activity.
class DesktopFile {
public:
    /// The file is there already.
    explicit DesktopFile(std::string path);

    void update(std::string_view title, Date now);

private:
    std::string path;
    Json metadata;
};

}  // namespace fleetwise::demo
