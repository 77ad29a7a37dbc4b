#pragma once

#include "foundation/regular_file.h"

#include <string>
#include <system_error>

namespace fleetwise {

/// What went wrong with which file, for a message to the user.
struct FileFailure {
    std::string path;
    std::error_code code;

    static FileFailure ofReading(std::string path, FileError error);

    /// The path and the system's words for the error.
    std::string text() const;
};

}  // namespace fleetwise
