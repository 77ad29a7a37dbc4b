#include "foundation/date.h"

#include <cmath>
#include <sstream>
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
    std::istringstream stream{std::string(text)};
    date::sys_time<std::chrono::microseconds> parsed;
    const bool hasZulu = !text.empty() && (text.back() == 'Z' || text.back() == 'z');
    stream >> date::parse(hasZulu ? "%FT%TZ" : "%FT%T%Ez", parsed);
    if (stream.fail() || stream.peek() != std::istringstream::traits_type::eof()) return {};
    return std::chrono::time_point_cast<Seconds>(parsed);
}

std::string internetDate(Date date) {
    // Half a millisecond is added so that a double just below a written value reads back as it.
    return date::format("%FT%TZ", floored<std::chrono::milliseconds>(date + Seconds(0.0005)));
}

std::string formatDate(Date date, Calendar calendar, const std::string& pattern) {
    return date::format(pattern, date::make_zoned(calendar, floored<std::chrono::seconds>(date)));
}

}  // namespace fleetwise
