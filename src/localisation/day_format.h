#pragma once

#include <string>
#include <string_view>

namespace fleetwise {

/// A day such as "2026-08-27" in the short form of the interface language: "27.08.2026" in German,
/// "Aug 27, 2026" in English. What is no day is given back as it stands.
std::string dayText(std::string_view isoDay);

/// The same without the year: "27.08." in German, "Aug 27" in English.
std::string shortDayText(std::string_view isoDay);

}  // namespace fleetwise
