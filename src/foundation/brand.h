#pragma once

#include <string_view>

namespace fleetwise {

/// The program's own name where files carry it.
struct Brand {
    static constexpr std::string_view stateDirName = "fleetwise";
    static constexpr std::string_view bundleName = "Fleetwise";
};

}  // namespace fleetwise
