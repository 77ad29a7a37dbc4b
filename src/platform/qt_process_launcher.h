#pragma once

#include "reactions/process_launcher.h"

namespace fleetwise {

/// Starts programs with nothing to read from and nowhere to print to.
class QtProcessLauncher final : public ProcessLauncher {
public:
    bool startDetached(const std::vector<std::string>& command) override;
};

}  // namespace fleetwise
