#pragma once

#include <string>

namespace fleetwise {

/// Times whole processes of the hook program at `hook`, alternating with others, `repetitions`
/// times each, and prints one JSON object on one line:
/// {"event":{"hookUs":…,"trueUs":…,"ratio":…},"node":{…} (where there is one),
///  "payload5MB":{"hookUs":…,"catUs":…,"ratio":…},"privateKiB":…}
/// Times are medians in microseconds; the private memory is that of one event at its exit. The
/// status files go to a temporary home.
int benchHook(const std::string& hook, int repetitions);

}  // namespace fleetwise
