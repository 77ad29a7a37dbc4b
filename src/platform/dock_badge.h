#pragma once

#include <cstddef>

namespace fleetwise {

/// Shows a count on the program's entry in the dock, nothing for 0. Docks that know no counts show
/// nothing; it is not waited for.
void showDockBadge(std::size_t count);

}  // namespace fleetwise
