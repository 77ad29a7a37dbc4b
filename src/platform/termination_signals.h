#pragma once

#include "foundation/main_loop.h"

#include <memory>

namespace fleetwise {

/// Runs `action` on the main thread when the process is told to end (SIGINT, SIGTERM, SIGHUP)
/// instead of ending it at once. Of these subscriptions there is one at a time; needs a
/// QCoreApplication.
std::unique_ptr<MainLoop::Subscription> onTermination(MainLoop::Action action);

}  // namespace fleetwise
