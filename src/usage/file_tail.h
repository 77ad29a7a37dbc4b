#pragma once

#include "foundation/regular_file.h"

#include <cstddef>
#include <string>

namespace fleetwise {

/// The last `longest` bytes of the file from the first line on that begins in them: all of a file
/// that is no longer. A last line without a line feed is part of it. The JSON parser's padding
/// follows. Bytes appended after the file was opened are not read.
tl::expected<std::string, FileError> readFileTail(const std::string& path, std::size_t longest);

}  // namespace fleetwise
