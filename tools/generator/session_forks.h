#pragma once

#include "generator/books.h"
#include "generator/filler.h"
#include "generator/output_file.h"
#include "generator/plan.h"
#include "generator/random.h"

namespace fleetwise::generator {

/// Writes the transcripts of the plan's forked sessions beside those of the sessions in the books,
/// which are there already, and enters them there. Every third is a fork of an earlier fork. There
/// are none where every transcript is too large to be copied.
tl::expected<void, GeneratorError> writeSessionForks(const Plan& plan, Random& random,
                                                     const Filler& filler, Books& books);

}  // namespace fleetwise::generator
