#pragma once

#include <cstdint>
#include <string>

namespace fleetwise {

/// The number with the thousands separator of the interface language: "200.000" in German,
/// "200,000" in English, with no-break spaces in French and Polish.
std::string groupedNumber(std::int64_t number);

/// A number with `decimals` digits behind the decimal separator of the interface language, given
/// in units of the last of them: 1234567 with 2 decimals is "12.345,67" in German. `decimals` is
/// from 1 to 9.
std::string fixedNumber(std::int64_t units, int decimals);

/// A count as short as it can be, with three digits at most: "950", "12,3 Tsd.", "4 Mio.",
/// "1,2 Mrd.". Not below 0.
std::string shortNumber(std::int64_t count);

/// A size in the largest unit that fits, of 10^6 or 10^9 bytes: "412 MB", "1,2 GB"; below one
/// megabyte "< 1 MB".
std::string byteCountText(std::uint64_t bytes);

}  // namespace fleetwise
