#include "demo/desktop_file.h"

#include "foundation/atomic_file.h"
#include "foundation/regular_file.h"

namespace fleetwise::demo {

namespace {

constexpr std::size_t maximumBytes = 1 << 16;

}  // namespace

DesktopFile::DesktopFile(std::string givenPath) : path(std::move(givenPath)) {
    const auto text = readRegularFile(path, maximumBytes);
    if (text) metadata = parseJson(*text).value_or(Json::object());
}

void DesktopFile::update(std::string_view title, Date now) {
    metadata["title"] = title;
    metadata["lastActivityAt"] = static_cast<std::int64_t>(secondsSince1970(now) * 1000);
    // The next activity writes it again.
    (void)writeFileAtomically(path, encodeJson(metadata));
}

}  // namespace fleetwise::demo
