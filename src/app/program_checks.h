#pragma once

#include "app/self_test.h"
#include "localisation/strings_table.h"

#include <string>
#include <vector>

namespace fleetwise {

/// The texts of the interface as they are in use.
struct InterfaceTexts {
    std::string language;       ///< one of interfaceLanguages
    StringsTable table;         ///< of that language
    StringsTable englishTable;  ///< which has every text
};

/// What must hold for this program on any machine: its vocabulary, tables, formats and digests.
/// `temporaryFolder` takes a small file for the time of a check.
std::vector<Check> programChecks(const InterfaceTexts& texts, const std::string& temporaryFolder);

}  // namespace fleetwise
