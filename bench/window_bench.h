#pragma once

#include <string>

namespace fleetwise {

/// Opens each window of the application on the home folder `home`, without a display, and times it
/// from the call to its first picture, that of the archive with its rows; then opens and closes all
/// of them `rounds` times. Prints one JSON object on one line:
/// {"firstMs":{"popover":…,…},"againMs":{…} (median),"residentMiB":{"before":…,"firstTen":…,
///  "last":…}}
int benchWindows(const std::string& home, int rounds);

}  // namespace fleetwise
