#pragma once

#include "generator/books.h"
#include "generator/filler.h"
#include "generator/output_file.h"
#include "generator/plan.h"
#include "generator/random.h"

#include <string>
#include <vector>

namespace fleetwise::generator {

/// All that Codex leaves in its folder by a plan.
class RolloutFleet {
public:
    /// `folders` are the working directories, at least one. What is handed over outlives this.
    RolloutFleet(const Plan& plan, std::string codexFolder, const std::vector<std::string>& folders,
                 Random& random, const Filler& filler);

    /// Writes the rollouts and the index of names, and enters them into the books.
    tl::expected<void, GeneratorError> write(Books& books);

private:
    using Result = tl::expected<void, GeneratorError>;

    Result writeOwn(Books& books);
    Result writeDescendants(Books& books, RolloutKind kind, int count);
    Result writeCompressed(Books& books);
    RolloutBook newRollout(int number);
    RolloutBook newSubagent(const RolloutBook& parent, int number);
    RolloutBook newFork(const RolloutBook& parent, int number);
    std::string pathOf(const RolloutBook& book) const;

    const Plan& plan;
    const std::string codexFolder;
    const std::vector<std::string>& folders;
    Random& random;
    const Filler& filler;
};

}  // namespace fleetwise::generator
