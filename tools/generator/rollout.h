#pragma once

#include "generator/books.h"
#include "generator/filler.h"
#include "generator/output_file.h"
#include "generator/random.h"

namespace fleetwise::generator {

/// Writes the rollout of the Codex session that `book` describes by its first fields (id, path,
/// cwd, state, model, originator, source, dates) and fills in its tokens. Gives the file's size.
/// The states are "working", "done", "failed" and "idle".
tl::expected<std::int64_t, GeneratorError> writeRollout(RolloutBook& book, int turns,
                                                        Random& random, const Filler& filler);

}  // namespace fleetwise::generator
