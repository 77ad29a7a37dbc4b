#include "foundation/date.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>

namespace fleetwise {

namespace {

// Dates beyond these years are no dates of ours; the calendar arithmetic stays within its range.
constexpr double earliestSeconds = -62135596800.0;  // year 1
constexpr double latestSeconds = 253402300799.0;    // end of year 9999

template <typename Unit>
date::sys_time<Unit> floored(Date date) {
    double seconds = secondsSince1970(date);
    if (std::isnan(seconds)) seconds = 0;
    const Date clamped = dateFromSeconds(std::clamp(seconds, earliestSeconds, latestSeconds));
    return std::chrono::floor<Unit>(clamped);
}

bool take(std::string_view& text, char expected) {
    if (!text.starts_with(expected)) return false;
    text.remove_prefix(1);
    return true;
}

bool isDigit(char character) {
    return character >= '0' && character <= '9';
}

bool takeNumber(std::string_view& text, std::size_t digits, int& number) {
    if (text.size() < digits) return false;
    number = 0;
    for (const char digit : text.substr(0, digits)) {
        if (!isDigit(digit)) return false;
        number = number * 10 + (digit - '0');
    }
    text.remove_prefix(digits);
    return true;
}

/// The fraction of a second at the front of `text`, to the nanosecond; 0 where there is none.
double takeFraction(std::string_view& text) {
    if (text.size() < 2 || text[0] != '.' || !isDigit(text[1])) return 0;
    text.remove_prefix(1);
    std::int64_t units = 0;
    double perSecond = 1;
    for (; !text.empty() && isDigit(text.front()); text.remove_prefix(1)) {
        if (perSecond >= 1e9) continue;
        units = units * 10 + (text.front() - '0');
        perSecond *= 10;
    }
    return static_cast<double>(units) / perSecond;
}

/// What `text`, "Z" or "+01:00", lies ahead of UTC.
std::optional<Seconds> zoneOffset(std::string_view text) {
    if (text == "Z" || text == "z") return Seconds(0);
    const bool isBehind = text.starts_with('-');
    int hours = 0;
    int minutes = 0;
    if (!take(text, isBehind ? '-' : '+') || !takeNumber(text, 2, hours) || !take(text, ':') ||
        !takeNumber(text, 2, minutes) || !text.empty() || hours > 23 || minutes > 59) {
        return {};
    }
    return Seconds((isBehind ? -1 : 1) * (hours * 3600 + minutes * 60));
}

}  // namespace

Date currentDate() {
    return std::chrono::time_point_cast<Seconds>(std::chrono::system_clock::now());
}

Calendar currentCalendar() {
    try {
        return date::current_zone();
    } catch (const std::runtime_error&) {
        return date::locate_zone("Etc/UTC");
    }
}

std::optional<Date> parseInternetDate(std::string_view text) {
    int year = 0;
    int month = 0;
    int day = 0;
    int hour = 0;
    int minute = 0;
    int second = 0;
    const bool isDateTime =
        takeNumber(text, 4, year) && take(text, '-') && takeNumber(text, 2, month) &&
        take(text, '-') && takeNumber(text, 2, day) && take(text, 'T') &&
        takeNumber(text, 2, hour) && take(text, ':') && takeNumber(text, 2, minute) &&
        take(text, ':') && takeNumber(text, 2, second);
    if (!isDateTime || hour > 23 || minute > 59 || second > 60) return {};
    const double fraction = takeFraction(text);
    const std::optional<Seconds> offset = zoneOffset(text);
    const date::year_month_day ymd{date::year(year), date::month(static_cast<unsigned>(month)),
                                   date::day(static_cast<unsigned>(day))};
    if (!ymd.ok() || !offset) return {};
    return Date(date::sys_days(ymd)) + Seconds(hour * 3600 + minute * 60 + second + fraction) -
           *offset;
}

std::string internetDate(Date date) {
    // Half a millisecond is added so that a double just below a written value reads back as it.
    return date::format("%FT%TZ", floored<std::chrono::milliseconds>(date + Seconds(0.0005)));
}

std::string formatDate(Date date, Calendar calendar, const std::string& pattern) {
    return date::format(pattern, date::make_zoned(calendar, floored<std::chrono::seconds>(date)));
}

date::local_days localDay(Date date, Calendar calendar) {
    return date::floor<date::days>(calendar->to_local(floored<std::chrono::seconds>(date)));
}

std::string dayName(date::local_days day) {
    return date::format("%F", day);
}

Date startOfDay(date::local_days day, Calendar calendar) {
    return calendar->to_sys(day, date::choose::earliest);
}

}  // namespace fleetwise
