#pragma once

#include "generator/books.h"
#include "generator/filler.h"
#include "generator/output_file.h"
#include "generator/random.h"

#include <string_view>

namespace fleetwise::generator {

struct RolloutShape {
    int turns = 1;               ///< its own; at least one
    std::string_view inherited;  ///< whole lines copied from the parent's rollout
};

/// Writes the rollout of the Codex session that `book` describes by its first fields (id, kind,
/// parent, path, cwd, state, model, originator, source, dates) and adds to its tokens. Gives the
/// file's size. The states are "working", "done", "failed" and "idle".
tl::expected<std::int64_t, GeneratorError> writeRollout(RolloutBook& book,
                                                        const RolloutShape& shape, Random& random,
                                                        const Filler& filler);

}  // namespace fleetwise::generator
