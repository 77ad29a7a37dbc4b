#pragma once

#include "foundation/date.h"

#include <string>
#include <string_view>

namespace fleetwise {

/// Names the days of a calendar. Dates that come mostly in order are named at little cost. One
/// object serves one thread.
class LocalDays {
public:
    explicit LocalDays(Calendar givenCalendar) : calendar(givenCalendar) {}

    /// "2026-11-21"; lives until the next call.
    std::string_view nameOf(Date date);

private:
    Calendar calendar;
    Date begin;  ///< of the day named last, and of the one after it
    Date end;
    std::string name;
};

}  // namespace fleetwise
