#include "cost/local_days.h"

namespace fleetwise {

std::string_view LocalDays::nameOf(Date date) {
    if (begin <= date && date < end) return name;
    const ::date::local_days local = localDay(date, calendar);
    begin = startOfDay(local, calendar);
    end = startOfDay(local + ::date::days(1), calendar);
    name = dayName(local);
    return name;
}

}  // namespace fleetwise
