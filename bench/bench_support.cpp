#include "bench_support.h"

#include <sys/resource.h>

#include <cmath>

namespace fleetwise {

double peakMebibytes() {
    rusage usage{};
    ::getrusage(RUSAGE_SELF, &usage);
#ifdef __APPLE__
    return static_cast<double>(usage.ru_maxrss) / (1 << 20);
#else
    return static_cast<double>(usage.ru_maxrss) / (1 << 10);
#endif
}

double rounded(double value) {
    return std::round(value * 1000) / 1000;
}

}  // namespace fleetwise
