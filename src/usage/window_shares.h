#pragma once

#include "cost/prices.h"
#include "foundation/date.h"
#include "usage/quota_window.h"

#include <map>
#include <string>

namespace fleetwise {

/// By session id, percent of the five-hour window.
using WindowShares = std::map<std::string, double>;

/// How much of the window's `usedPercent` each Claude Code session used since `windowStart`: in
/// proportion to what its requests since then cost by the book, as its transcripts below
/// `projectsDirectory` tell. Reads every transcript written to since then, so not for the main
/// thread.
WindowShares windowShares(const std::string& projectsDirectory, Date windowStart, int usedPercent,
                          const Prices::Book& book);

}  // namespace fleetwise
