#include "ui/archive/archive_days.h"

#include "foundation/text.h"
#include "localisation/day_format.h"
#include "ui/base/interface_text.h"

#include <fmt/format.h>

namespace fleetwise {

namespace {

constexpr int minutesPerHour = 60;

}  // namespace

std::string ArchiveDays::Time::clock() const {
    return fmt::format("{:02}:{:02}", minute / minutesPerHour, minute % minutesPerHour);
}

ArchiveDays::ArchiveDays(Calendar givenCalendar, Date now)
    : calendar(givenCalendar), today(::date::floor<::date::days>(localTime(now))) {}

ArchiveDays::Time ArchiveDays::at(Date date) {
    const ::date::local_seconds local = localTime(date);
    const auto day = ::date::floor<::date::days>(local);
    auto known = days.find(day);
    if (known == days.end()) known = days.emplace(day, describe(day)).first;
    const auto minutes = std::chrono::duration_cast<std::chrono::minutes>(local - day);
    return {&known->second, static_cast<int>(minutes.count())};
}

bool ArchiveDays::isToday(Date now) {
    return ::date::floor<::date::days>(localTime(now)) == today;
}

::date::local_seconds ArchiveDays::localTime(Date date) {
    const auto seconds = ::date::floor<std::chrono::seconds>(date);
    if (seconds < offset.begin || seconds >= offset.end) offset = calendar->get_info(seconds);
    return ::date::local_seconds(seconds.time_since_epoch() + offset.offset);
}

ArchiveDays::Day ArchiveDays::describe(::date::local_days day) const {
    const std::string iso = dayName(day);
    const std::string date = dayText(iso);
    std::string relative;
    if (day == today) relative = localised("Heute"_text);
    if (day == today - ::date::days(1)) relative = localised("Gestern"_text);
    // As German has it, people of most languages type a date with points.
    const ::date::year_month_day parts(day);
    const std::string points =
        fmt::format("{:02}.{:02}.{}", static_cast<unsigned>(parts.day()),
                    static_cast<unsigned>(parts.month()), static_cast<int>(parts.year()));
    return {.text = qtText(relative.empty() ? date : relative),
            .searchText = caseFolded(fmt::format("{} {} {} {}", relative, date, iso, points))};
}

}  // namespace fleetwise
