#pragma once

#include "usage/goal_store.h"
#include "usage/own_goals.h"

#include <optional>
#include <string>

namespace fleetwise {

// Goals in words, in the interface language. Pure functions.

/// "aktiv", "angehalten" …
std::string goalStatusText(GoalStore::Status status);

/// How far the goal is, "62 % von 200.000 Token", without a budget "31.000 Token"; "" for nothing.
std::string goalProgressText(const GoalStore::Goal& goal);

/// The goal on one line: objective, status where it is not active, progress.
std::string goalText(const GoalStore::Goal& goal);

/// The limits of an own goal: "höchstens 5,00 $, 30 % des 5-Stunden-Fensters"; "" without any.
std::string goalLimitsText(const OwnGoals::Entry& entry);

}  // namespace fleetwise
