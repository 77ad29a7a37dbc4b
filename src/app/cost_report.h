#pragma once

#include "app/report_block.h"
#include "cost/cost_store.h"
#include "cost/prices.h"

namespace fleetwise {

/// Adds what the session used and what that costs by the book; nothing where it used nothing.
void addCosts(ReportBlock& block, const CostStore::Session& session, const Prices::Book& book);

}  // namespace fleetwise
