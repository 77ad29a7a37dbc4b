#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>

namespace fleetwise {

/// How far a scan has come, and whether it is to go on. Any thread.
struct CostScanControl {
    std::atomic<std::size_t> files = 0;  ///< to be read, as far as is known
    std::atomic<std::size_t> filesDone = 0;
    std::atomic<std::uint64_t> bytes = 0;
    std::atomic<std::uint64_t> bytesDone = 0;
    std::atomic<bool> isStopping = false;
};

}  // namespace fleetwise
