#pragma once

#include "app/report_block.h"
#include "cost/prices.h"
#include "cost/session_cost.h"

namespace fleetwise {

/// Adds what the session, which is one of `all`, used and what that costs by the book; nothing
/// where it used nothing.
void addCosts(ReportBlock& block, const SessionCost& session, const SessionCosts& all,
              const Prices::Book& book);

}  // namespace fleetwise
