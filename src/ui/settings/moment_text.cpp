#include "ui/settings/moment_text.h"

#include "localisation/day_format.h"

namespace fleetwise {

std::string momentText(Date at, Date now, Calendar calendar) {
    const auto day = localDay(at, calendar);
    if (day == localDay(now, calendar)) return formatDate(at, calendar, "%H:%M:%S");
    return dayText(dayName(day)) + ' ' + formatDate(at, calendar, "%H:%M");
}

}  // namespace fleetwise
