#pragma once

#include <cstdint>
#include <string>

namespace fleetwise {

/// The number with the thousands separator of the interface language: "200.000" in German,
/// "200,000" in English, with no-break spaces in French and Polish.
std::string groupedNumber(std::int64_t number);

}  // namespace fleetwise
