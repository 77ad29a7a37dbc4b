#pragma once

#include "generator/books.h"
#include "generator/output_file.h"
#include "generator/plan.h"

#include <string>

namespace fleetwise::generator {

/// Writes into the folder `home` (made where it is missing) what the agents of a user with that
/// home would have left: `.claude` with transcripts, registry, status records and task lists,
/// `.codex` with rollouts, `Library` with the desktop app's metadata and usage history, and the
/// working directories below `work`. Nothing is written where one of these four is there already. A
/// fault in the middle leaves what was written.
tl::expected<Books, GeneratorError> generate(const Plan& plan, const std::string& home);

}  // namespace fleetwise::generator
