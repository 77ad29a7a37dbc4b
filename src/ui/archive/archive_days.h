#pragma once

#include "foundation/date.h"

#include <QString>

#include <map>
#include <string>

namespace fleetwise {

/// The days that sessions were last active on, as shown and as searched for. Made for thousands of
/// dates: what they share is worked out once.
class ArchiveDays {
public:
    struct Day {
        QString text;            ///< "Heute", "Gestern" or the date
        std::string searchText;  ///< every form of it that people type, in lower case
    };
    struct Time {
        const Day* day = nullptr;  ///< lives as long as the ArchiveDays
        int minute = 0;            ///< of the day

        /// "14:02".
        std::string clock() const;
    };

    ArchiveDays(Calendar givenCalendar, Date now);

    Time at(Date date);

    /// Whether `now` is still the day that "Heute" means.
    bool isToday(Date now);

private:
    ::date::local_seconds localTime(Date date);
    Day describe(::date::local_days day) const;

    Calendar calendar;
    ::date::sys_info offset{};  ///< what holds from its beginning to its end
    ::date::local_days today;
    std::map<::date::local_days, Day> days;
};

}  // namespace fleetwise
