#pragma once

#include <string>

namespace fleetwise {

/// An amount of US dollars in the short form of the interface language: "0,42 $" in German,
/// "$0.42" in English. Two decimals, rounded half away from zero; none from 1,000 on, "1.234 $".
/// More than nothing but less than half a cent is "< 0,01 $". Beyond 10^12 dollars the figure is
/// a bound; what is no number is written as nothing at all, "0,00 $".
std::string moneyText(double usd);

}  // namespace fleetwise
