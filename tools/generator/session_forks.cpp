#include "generator/session_forks.h"

#include "foundation/directory.h"
#include "foundation/regular_file.h"
#include "generator/transcript.h"
#include "generator/transcript_history.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <vector>

namespace fleetwise::generator {

namespace {

constexpr std::int64_t largestParentBytes = 2'000'000;

/// A session with the parent's circumstances, begun after the parent's last event.
SessionBook newFork(const SessionBook& parent, const Plan& plan, Random& random) {
    SessionBook book;
    book.id = random.uuid();
    book.forkedFrom = parent.id;
    book.cwd = parent.cwd;
    book.gitBranch = parent.gitBranch;
    book.projectFolder = parent.projectFolder;
    book.transcriptPath = joinPath(book.projectFolder, book.id + ".jsonl");
    book.entrypoint = parent.entrypoint;
    book.permissionMode = parent.permissionMode;
    book.title = parent.title;
    book.name = parent.name;
    book.state = "dormant";
    const double since = (plan.now - parent.lastActivityAt).count();
    book.startedAt = parent.lastActivityAt + Seconds(std::floor(since / 2 * random.fraction()));
    const double left = (plan.now - book.startedAt).count();
    book.lastActivityAt = book.startedAt + Seconds(std::floor(left * random.fraction()));
    return book;
}

/// The parent's turns up to a random one, as the fork's own.
tl::expected<TranscriptHistory, GeneratorError> historyOf(const SessionBook& parent,
                                                          SessionBook& fork, Random& random) {
    return readRegularFile(parent.transcriptPath, static_cast<std::size_t>(parent.transcriptBytes))
        .map_error([&](FileError) {
            return GeneratorError{.path = parent.transcriptPath,
                                  .code = std::make_error_code(std::errc::io_error)};
        })
        .map([&](const std::string& transcript) {
            const std::size_t end = random.pick(turnEnds(transcript));
            return inherit(std::string_view(transcript).substr(0, end), parent.id, fork);
        });
}

/// One of the books from `begin` up to `end` whose transcript is small enough to be copied.
std::optional<std::size_t> pickParent(const Books& books, std::size_t begin, std::size_t end,
                                      Random& random) {
    std::vector<std::size_t> candidates;
    for (std::size_t index = begin; index < end; ++index) {
        if (books.sessions[index].transcriptBytes <= largestParentBytes) {
            candidates.push_back(index);
        }
    }
    if (candidates.empty()) return std::nullopt;
    return random.pick(candidates);
}

tl::expected<SessionBook, GeneratorError> writeFork(const SessionBook& parent, const Plan& plan,
                                                    Random& random, const Filler& filler) {
    SessionBook book = newFork(parent, plan, random);
    return historyOf(parent, book, random).and_then([&](const TranscriptHistory& history) {
        const auto bytes =
            static_cast<std::int64_t>(history.text.size()) + random.between(10'000, 60'000);
        const TranscriptShape shape{.bytes = bytes, .history = &history};
        return writeTranscript(book, shape, random, filler).map([&] { return std::move(book); });
    });
}

}  // namespace

tl::expected<void, GeneratorError> writeSessionForks(const Plan& plan, Random& random,
                                                     const Filler& filler, Books& books) {
    const std::size_t originals = books.sessions.size();
    for (int number = 0; number < plan.forkedSessions; ++number) {
        std::optional<std::size_t> parent;
        if (number % 3 == 2) parent = pickParent(books, originals, books.sessions.size(), random);
        if (!parent) parent = pickParent(books, 0, originals, random);
        if (!parent) return {};
        auto fork = writeFork(books.sessions[*parent], plan, random, filler);
        if (!fork) return tl::unexpected(fork.error());
        books.transcriptBytes += fork->transcriptBytes;
        books.sessions.push_back(std::move(*fork));
    }
    return {};
}

}  // namespace fleetwise::generator
