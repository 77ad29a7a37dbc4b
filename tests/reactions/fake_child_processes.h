#pragma once

#include "reactions/child_processes.h"

#include <deque>
#include <utility>
#include <vector>

namespace fleetwise::testing {

/// Starts nothing, and has what a test wants end.
class FakeChildProcesses final : public ChildProcesses {
public:
    tl::expected<void, std::string> start(const ChildCommand& command, Ended ended) override {
        if (!failure.empty()) return tl::unexpected(failure);
        started.push_back(command);
        running.push_back(std::move(ended));
        return {};
    }

    /// Ends the one that runs longest.
    void endFirst(std::int32_t exitCode) {
        const Ended ended = std::move(running.front());
        running.pop_front();
        ended(exitCode);
    }

    std::string failure;  ///< where it is not empty, nothing can be started
    std::vector<ChildCommand> started;
    std::deque<Ended> running;
};

}  // namespace fleetwise::testing
