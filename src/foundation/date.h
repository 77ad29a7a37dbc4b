#pragma once

#include <date/tz.h>

#include <chrono>
#include <optional>
#include <string>
#include <string_view>

namespace fleetwise {

/// A length of time. Never negative unless a comment says so.
using Seconds = std::chrono::duration<double>;

/// A point in time: seconds since 1970-01-01 UTC, as a double (resolution below a microsecond).
using Date = std::chrono::time_point<std::chrono::system_clock, Seconds>;

/// The rules that turn a point in time into a day and an hour of the clock: a time zone.
using Calendar = const ::date::time_zone*;

inline Date dateFromSeconds(double secondsSince1970) {
    return Date(Seconds(secondsSince1970));
}
inline Date dateFromMilliseconds(double milliseconds) {
    return Date(Seconds(milliseconds / 1000));
}
inline double secondsSince1970(Date date) {
    return date.time_since_epoch().count();
}

Date currentDate();

/// The machine's time zone, or UTC where the system does not tell.
Calendar currentCalendar();

/// Reads an ISO 8601 internet date-time such as "2026-11-21T02:05:29.783Z" or
/// "2026-11-21T04:07:43+00:00", with or without a fraction. Anything else gives nothing.
std::optional<Date> parseInternetDate(std::string_view text);

/// ISO 8601 in UTC with milliseconds, "2026-11-21T02:05:29.783Z": the form of all our own files.
std::string internetDate(Date date);

/// The date in the calendar's time zone, to the second, by a strftime pattern such as
/// "%d.%m.%Y %H:%M:%S".
std::string formatDate(Date date, Calendar calendar, const std::string& pattern);

/// The day of the calendar that `date` falls on.
::date::local_days localDay(Date date, Calendar calendar);

/// "2026-11-21".
std::string dayName(::date::local_days day);

/// When the day begins: where its midnight is skipped or comes twice, the first moment that is its
/// own.
Date startOfDay(::date::local_days day, Calendar calendar);

}  // namespace fleetwise
