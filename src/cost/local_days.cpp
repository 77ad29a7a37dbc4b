#include "cost/local_days.h"

namespace fleetwise {

std::string_view LocalDays::nameOf(Date date) {
    if (begin <= date && date < end) return name;
    const auto local = ::date::floor<::date::days>(
        calendar->to_local(std::chrono::floor<std::chrono::seconds>(date)));
    const auto start = [&](auto day) {
        return std::chrono::time_point_cast<Seconds>(
            calendar->to_sys(day, ::date::choose::earliest));
    };
    begin = start(local);
    end = start(local + ::date::days(1));
    name = ::date::format("%F", local);
    return name;
}

}  // namespace fleetwise
