#include "generator/rollout_fleet.h"

#include "foundation/directory.h"
#include "foundation/regular_file.h"
#include "generator/past.h"
#include "generator/rollout.h"
#include "generator/rollout_format.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace fleetwise::generator {

namespace {

constexpr std::array<std::string_view, 4> rolloutStates{"done", "working", "failed", "idle"};
constexpr std::size_t largestParentBytes = std::size_t{1} << 30;
constexpr std::int64_t secondsPerDay = 86'400;

/// How every file of that compression begins.
constexpr std::string_view compressedMagic = "\x28\xb5\x2f\xfd";

std::string_view stateOf(int number) {
    return rolloutStates[static_cast<std::size_t>(number) % rolloutStates.size()];
}

tl::expected<std::string, GeneratorError> contentsOf(const std::string& path) {
    return readRegularFile(path, largestParentBytes).map_error([&](FileError) {
        return GeneratorError{.path = path, .code = std::make_error_code(std::errc::io_error)};
    });
}

}  // namespace

RolloutFleet::RolloutFleet(const Plan& wanted, std::string folder,
                           const std::vector<std::string>& workingFolders, Random& source,
                           const Filler& text)
    : plan(wanted),
      codexFolder(std::move(folder)),
      folders(workingFolders),
      random(source),
      filler(text) {}

tl::expected<void, GeneratorError> RolloutFleet::write(Books& books) {
    return writeOwn(books)
        .and_then(
            [&] { return writeDescendants(books, RolloutKind::subagent, plan.subagentRollouts); })
        .and_then([&] { return writeDescendants(books, RolloutKind::fork, plan.forkedRollouts); })
        .and_then([&] { return writeCompressed(books); });
}

RolloutFleet::Result RolloutFleet::writeOwn(Books& books) {
    std::string index;
    for (int number = 0; number < plan.rollouts; ++number) {
        RolloutBook book = newRollout(number);
        const RolloutShape shape{.turns = static_cast<int>(random.between(1, 30))};
        const auto bytes = writeRollout(book, shape, random, filler);
        if (!bytes) return tl::unexpected(bytes.error());
        books.rolloutBytes += *bytes;
        // The last name of a session counts.
        if (book.title) index += renamingLine(book, "before") + renamingLine(book, *book.title);
        books.rollouts.push_back(std::move(book));
    }
    if (index.empty()) return {};
    return writeFile(joinPath(codexFolder, "session_index.jsonl"), index, plan.now);
}

/// The sessions that users began have descendants in turns.
RolloutFleet::Result RolloutFleet::writeDescendants(Books& books, RolloutKind kind, int count) {
    if (plan.rollouts <= 0) return {};
    for (int number = 0; number < count; ++number) {
        const RolloutBook& parent =
            books.rollouts[static_cast<std::size_t>(number % plan.rollouts)];
        const auto history = contentsOf(parent.path);
        if (!history) return tl::unexpected(history.error());
        const bool isFork = kind == RolloutKind::fork;
        RolloutBook book = isFork ? newFork(parent, number) : newSubagent(parent, number);
        book.path = pathOf(book);
        const std::string_view inherited =
            isFork ? *history : inheritedBySubagent(*history, book.startedAt);
        const RolloutShape shape{static_cast<int>(random.between(1, 4)), inherited};
        const auto bytes = writeRollout(book, shape, random, filler);
        if (!bytes) return tl::unexpected(bytes.error());
        books.rolloutBytes += *bytes;
        books.rollouts.push_back(std::move(book));
    }
    return {};
}

/// Older than all that can be read.
RolloutFleet::Result RolloutFleet::writeCompressed(Books& books) {
    for (int number = 0; number < plan.compressedRollouts; ++number) {
        const Date end =
            plan.now - Seconds(std::max(plan.days, 0.0) * static_cast<double>(secondsPerDay));
        const auto earlier =
            static_cast<double>(random.between(7 * secondsPerDay, 30 * secondsPerDay));
        RolloutBook book;
        book.id = random.uuid();
        book.startedAt = end - Seconds(earlier);
        const std::string path = pathOf(book) + ".zst";
        const std::string_view rest = filler.escapedText(random, 4'000);
        Result done = writeFile(path, std::string(compressedMagic).append(rest), book.startedAt);
        if (!done) return done;
        books.compressedRollouts.push_back(path);
    }
    return {};
}

RolloutBook RolloutFleet::newRollout(int number) {
    RolloutBook book;
    book.id = random.uuid();
    book.cwd = random.pick(folders);
    book.state = stateOf(number);
    book.model = "gpt-6-sol";
    book.originator = random.chance(60) ? "codex_exec" : "codex-tui";
    book.source = book.originator == "codex_exec" ? "exec" : "vscode";
    if (number % 4 == 1) book.title = Filler::phrase(random, 3);
    book.lastEventAt =
        book.state == "working" ? secondsAgo(plan, random, 2, 60) : someTimeAgo(plan, random);
    book.startedAt = book.lastEventAt - Seconds(static_cast<double>(random.between(30, 7'200)));
    book.path = pathOf(book);
    return book;
}

/// At work while its parent was, and still so where the parent is.
RolloutBook RolloutFleet::newSubagent(const RolloutBook& parent, int number) {
    RolloutBook book;
    book.id = random.uuid();
    book.kind = RolloutKind::subagent;
    book.parentId = parent.id;
    book.nickname = Filler::word(random);
    book.cwd = parent.cwd;
    book.state = parent.state == "working" ? "working" : number % 3 == 2 ? "failed" : "done";
    book.model = parent.model;
    book.originator = parent.originator;
    book.source = "subagent";
    const double worked = (parent.lastEventAt - parent.startedAt).count();
    book.startedAt = parent.startedAt + Seconds(std::floor(worked * random.fraction()));
    const double left = (parent.lastEventAt - book.startedAt).count();
    book.lastEventAt = book.state == "working"
                           ? parent.lastEventAt
                           : book.startedAt + Seconds(std::floor(left * random.fraction()));
    return book;
}

/// Begun after its parent's last event.
RolloutBook RolloutFleet::newFork(const RolloutBook& parent, int number) {
    RolloutBook book = parent;
    book.id = random.uuid();
    book.kind = RolloutKind::fork;
    book.parentId = parent.id;
    book.title.reset();
    book.state = stateOf(number);
    const double since = (plan.now - parent.lastEventAt).count();
    book.startedAt = parent.lastEventAt + Seconds(std::floor(since / 2 * random.fraction()));
    const double left = (plan.now - book.startedAt).count();
    book.lastEventAt = book.state == "working"
                           ? std::max(book.startedAt, secondsAgo(plan, random, 2, 60))
                           : book.startedAt + Seconds(std::floor(left * random.fraction()));
    return book;
}

std::string RolloutFleet::pathOf(const RolloutBook& book) const {
    return rolloutPath(codexFolder, book, date::locate_zone("UTC"));
}

}  // namespace fleetwise::generator
