#pragma once

#include "generator/books.h"
#include "generator/output_file.h"
#include "generator/random.h"

#include <string>

namespace fleetwise::generator {

/// Where the desktop app keeps the sessions of a new account in the home.
std::string newDesktopFolder(const std::string& home, Random& random);

/// The desktop app's session number `number`, counted from 0, in its folder: every fifth is
/// archived, the last turn of every seventh ended with an error.
DesktopBook newDesktopBook(const std::string& folder, int number, Random& random);

/// Writes what the desktop app keeps about the session, which is one of its own and has its
/// transcript already.
tl::expected<void, GeneratorError> writeDesktopSession(const SessionBook& book, Random& random);

}  // namespace fleetwise::generator
