#pragma once

#include <string>

namespace fleetwise {

/// Runs the hook program at `hook` on `events` events of a running session of the home folder
/// `home`, whose fleet is watched as the application watches it, and times each from the start of
/// the hook's process to the published list that shows it. Prints one JSON object on one line:
/// {"eventToListMs":{"median":…,"p95":…,"max":…},"events":…,"sessions":…}
/// The status files of the home are written to.
int benchLive(const std::string& home, const std::string& hook, int events);

}  // namespace fleetwise
