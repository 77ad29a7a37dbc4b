#include "demo/codex_actor.h"

#include "foundation/regular_file.h"
#include "generator/filler.h"
#include "generator/rollout_format.h"

#include <fmt/format.h>

#include <fstream>

namespace fleetwise::demo {

namespace {

constexpr std::size_t largestRolloutBytes = 1 << 28;

generator::RolloutBook newBook(const std::string& codexFolder, const std::string& cwd,
                               generator::Random& random) {
    generator::RolloutBook book;
    book.id = random.uuid();
    book.cwd = cwd;
    book.model = "gpt-6-sol";
    book.originator = "codex-tui";
    book.source = "vscode";
    book.startedAt = book.lastEventAt = currentDate();
    book.path = generator::rolloutPath(codexFolder, book, currentCalendar());
    return book;
}

}  // namespace

tl::expected<std::unique_ptr<CodexActor>, std::string> CodexActor::start(const Part& part) {
    const std::string codexFolder = part.home + "/.codex";
    generator::Random random(part.seed);
    const generator::RolloutBook book = newBook(codexFolder, part.cwd, random);
    RolloutRecorder rollout(book, {}, part.seed + 1);
    if (!part.name.empty()) {
        std::ofstream(codexFolder + "/session_index.jsonl", std::ios::app)
            << generator::renamingLine(book, part.name);
    }
    auto process = CodexStandIn::start(part.standIn, part.home, part.cwd, book.path);
    if (!process) {
        return tl::unexpected(
            fmt::format("cannot run a copy of {}: {}", part.standIn, process.error().message()));
    }
    return std::unique_ptr<CodexActor>(
        new CodexActor(part, std::move(rollout), *std::move(process)));
}

CodexActor::CodexActor(const Part& part, RolloutRecorder givenRollout, CodexStandIn givenProcess)
    : codexFolder(part.home + "/.codex"),
      random(part.seed + 2),
      rollout(std::move(givenRollout)),
      process(std::move(givenProcess)),
      scene(part.firstScene % codexScenes().size()) {}

tl::expected<bool, std::string> CodexActor::act() {
    if (restLeft > 0) {
        --restLeft;
        return false;
    }
    const CodexStep& taken = nextStep();
    restLeft = taken.rest;
    if (taken.doer == CodexDoer::session) {
        rollout.append(taken, currentDate());
        return true;
    }
    if (taken.move == CodexMove::begins) subagent.emplace(newSubagent());
    subagent->append(taken, currentDate());
    return true;
}

const CodexStep& CodexActor::nextStep() {
    if (step == codexScenes()[scene].size()) {
        scene = (scene + 1) % codexScenes().size();
        step = 0;
    }
    return codexScenes()[scene][step++];
}

RolloutRecorder CodexActor::newSubagent() {
    const generator::RolloutBook& parent = rollout.book();
    generator::RolloutBook book = newBook(codexFolder, parent.cwd, random);
    book.kind = RolloutKind::subagent;
    book.parentId = parent.id;
    book.nickname = generator::Filler::word(random);
    const std::string history = readRegularFile(parent.path, largestRolloutBytes).value_or("");
    return {book, generator::inheritedBySubagent(history, book.startedAt), random.below(1'000'000)};
}

}  // namespace fleetwise::demo
