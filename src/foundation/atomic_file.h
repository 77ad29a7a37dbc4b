#pragma once

#include "foundation/date.h"

#include <tl/expected.hpp>

#include <string>
#include <string_view>
#include <system_error>

namespace fleetwise {

/// Replaces the file at `path` as a whole: a temporary file beside it, fsync, rename, fsync of
/// the folder. A reader sees the old contents or the new, never a mixture. Mode 0600 unless
/// `mode` says otherwise. On failure the old file stands unharmed and no temporary file is left.
tl::expected<void, std::error_code> writeFileAtomically(const std::string& path,
                                                        std::string_view contents,
                                                        unsigned mode = 0600);

/// Removes the temporary files that killed writers of `path` have left behind, as far as they were
/// last written before `before`: a younger one may belong to a writer at work.
void removeAbandonedFiles(const std::string& path, Date before);

/// Creates the folder and its missing parents with mode 0700; an existing folder is left as it is.
tl::expected<void, std::error_code> makePrivateDirectory(const std::string& path);

}  // namespace fleetwise
