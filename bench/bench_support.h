#pragma once

namespace fleetwise {

/// The largest resident size of this process so far.
double peakMebibytes();

/// To three decimals, for what is printed.
double rounded(double value);

}  // namespace fleetwise
