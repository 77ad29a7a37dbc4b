#pragma once

#include <string>
#include <string_view>

namespace fleetwise {

/// The name Claude Code gives to the folder of a working directory, below its transcripts and
/// below its temporary files: each UTF-16 code unit outside A–Z a–z 0–9 becomes "-", so a
/// character beyond U+FFFF gives two; a byte that is not UTF-8 gives one. The agent cuts long
/// names and appends a suffix that cannot be derived; here they stay whole.
std::string projectFolderName(std::string_view cwd);

}  // namespace fleetwise
