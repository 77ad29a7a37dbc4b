#pragma once

#include "reactions/window_focus.h"

#include <memory>

namespace fleetwise {

/// What raises windows on the desktop this program runs on. Main thread; a call waits for the
/// window system's answers.
std::unique_ptr<WindowFocus> makeWindowFocus();

}  // namespace fleetwise
