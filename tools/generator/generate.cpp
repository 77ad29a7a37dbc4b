#include "generator/generate.h"

#include "foundation/atomic_file.h"
#include "foundation/directory.h"
#include "generator/desktop_session.h"
#include "generator/filler.h"
#include "generator/live_session.h"
#include "generator/past.h"
#include "generator/random.h"
#include "generator/rollout_fleet.h"
#include "generator/session_forks.h"
#include "generator/transcript.h"
#include "generator/usage_history.h"
#include "sources/project_folder.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <vector>

namespace fleetwise::generator {

namespace {

using Result = tl::expected<void, GeneratorError>;

/// The agent cuts folder names longer than this and appends something of its own.
constexpr std::size_t longestFolderName = 200;

constexpr std::array<std::string_view, 3> entrypoints{"claude-desktop", "claude-vscode", "sdk-cli"};
constexpr std::array<std::string_view, 4> permissionModes{"default", "acceptEdits", "plan", "auto"};

struct Project {
    std::string cwd;
    std::optional<std::string> branch;
};

class HomeWriter {
public:
    HomeWriter(const Plan& wanted, std::string folder)
        : plan(wanted), home(std::move(folder)), random(wanted.seed), filler(random) {}

    tl::expected<Books, GeneratorError> write() {
        if (Result free = checkThatHomeIsFree(); !free) return tl::unexpected(free.error());
        for (const auto step :
             {&HomeWriter::writeProjects, &HomeWriter::writeSessions, &HomeWriter::writeRollouts,
              &HomeWriter::writeForks, &HomeWriter::writeUsage}) {
            if (Result done = (this->*step)(); !done) return tl::unexpected(done.error());
        }
        return std::move(books);
    }

private:
    Result checkThatHomeIsFree() const {
        for (const std::string_view name : {".claude", ".codex", "Library", "work"}) {
            const std::string path = at(name);
            if (inspectFile(path)) {
                return tl::unexpected(GeneratorError{GeneratorError::Kind::occupied, path, {}});
            }
        }
        return {};
    }

    std::string at(std::string_view name) const { return joinPath(home, name); }

    /// Every fourth project has an awkward name, every fifth a detached head, every sixth no
    /// repository.
    Result writeProjects() {
        for (int index = 0; index < std::max(plan.projects, 1); ++index) {
            const std::string_view pattern = index % 4 == 3 ? "work/Größe {} (v{})" : "work/{}-{}";
            Project project;
            project.cwd = at(fmt::format(fmt::runtime(pattern), Filler::word(random), index));
            if (const auto made = makePrivateDirectory(project.cwd); !made) {
                return tl::unexpected(
                    GeneratorError{GeneratorError::Kind::unwritable, project.cwd, made.error()});
            }
            if (index % 6 != 5) {
                if (Result done = writeRepository(project, index % 5 == 4); !done) {
                    return done;
                }
            }
            projects.push_back(std::move(project));
        }
        return {};
    }

    Result writeRepository(Project& project, bool isDetached) {
        std::string commit;
        for (const int digits : {16, 16, 8})
            commit += random.hexadecimal(digits);
        const std::string branch =
            random.chance(50) ? "main" : fmt::format("feature/{}", Filler::word(random));
        project.branch = isDetached ? commit.substr(0, 7) : branch;
        return writeFile(joinPath(project.cwd, ".git/HEAD"),
                         (isDetached ? commit : "ref: refs/heads/" + branch) + "\n",
                         plan.now - Seconds(86'400));
    }

    /// How large each transcript becomes: a few take most of the room.
    std::vector<std::int64_t> transcriptSizes() {
        const int count = std::max(plan.sessions, 0);
        std::vector<double> weights;
        weights.reserve(static_cast<std::size_t>(count));
        double total = 0;
        for (int rank = 0; rank < count; ++rank) {
            weights.push_back(1.0 / (rank + 5));
            total += weights.back();
        }
        for (std::size_t left = weights.size(); left > 1; --left)
            std::swap(weights[left - 1], weights[random.below(left)]);
        std::vector<std::int64_t> sizes;
        sizes.reserve(weights.size());
        for (const double weight : weights)
            sizes.push_back(
                static_cast<std::int64_t>(std::max(plan.megabytes, 0.0) * 1e6 * weight / total));
        return sizes;
    }

    Result writeSessions() {
        const std::vector<std::int64_t> sizes = transcriptSizes();
        const int live = std::min(plan.live, plan.sessions);
        int desktopNumber = 0;
        for (int index = 0; index < plan.sessions; ++index) {
            SessionBook book = newSession(index < live);
            if (isDesktop(index)) becomeDesktop(book, desktopNumber++);
            const std::int64_t bytes = sizes[static_cast<std::size_t>(index)];
            Result done =
                book.isLive ? writeLive(book, bytes, index) : writeEnded(book, bytes, index - live);
            if (done && book.desktop) done = writeDesktopSession(book, random);
            if (!done) return done;
            books.transcriptBytes += book.transcriptBytes;
            books.sessions.push_back(std::move(book));
        }
        return {};
    }

    SessionBook newSession(bool isLive) {
        const Project& project = random.pick(projects);
        SessionBook book;
        book.id = random.uuid();
        book.cwd = project.cwd;
        book.gitBranch = project.branch;
        book.projectFolder = joinPath(at(".claude/projects"), folderName(project.cwd));
        book.transcriptPath = joinPath(book.projectFolder, book.id + ".jsonl");
        book.isLive = isLive;
        book.entrypoint = random.chance(70) ? "cli" : random.pick(entrypoints);
        book.permissionMode = random.pick(permissionModes);
        book.lastActivityAt = isLive ? secondsAgo(plan, random, 2, 25) : someTimeAgo(plan, random);
        book.startedAt =
            book.lastActivityAt - Seconds(static_cast<double>(random.between(300, 20'000)));
        if (random.chance(60)) book.title = Filler::phrase(random, 4);
        if (book.title && random.chance(25)) book.name = book.title;
        return book;
    }

    /// Desktop sessions are spread evenly over all.
    bool isDesktop(std::int64_t index) const {
        const std::int64_t share = std::clamp(plan.desktop, 0, plan.sessions);
        return (index + 1) * share / plan.sessions > index * share / plan.sessions;
    }

    void becomeDesktop(SessionBook& book, int number) {
        if (desktopFolder.empty()) desktopFolder = newDesktopFolder(home, random);
        book.entrypoint = "claude-desktop";
        book.desktop = newDesktopBook(desktopFolder, number, random);
    }

    static std::string folderName(const std::string& cwd) {
        std::string name = projectFolderName(cwd);
        if (name.size() > longestFolderName) name = name.substr(0, longestFolderName) + "-b8dz2w";
        return name;
    }

    static bool hasFailed(const SessionBook& book) { return book.desktop && book.desktop->error; }

    SessionFiles filesOf(const SessionBook& book, int index) const {
        return {at(fmt::format(".claude/sessions/{}.json", 100'000 + index)),
                at(fmt::format(".claude/fleetwise/status/{}.json", book.id))};
    }

    Result writeLive(SessionBook& book, std::int64_t bytes, int index) {
        const Situation& situation = hasFailed(book) ? failedSituation() : situationOf(index);
        book.state = situation.shown;
        const TranscriptShape shape{bytes, situation.ending, std::string(situation.tool), {}};
        return writeTranscript(book, shape, random, filler)
            .and_then([&] {
                return writeLiveSession(book, situation, filesOf(book, index), plan, random);
            })
            .and_then([&] { return writeSubagents(book, situation.subagents); })
            .and_then([&] { return index % 3 == 0 ? writeTasks(book) : Result(); });
    }

    Result writeEnded(SessionBook& book, std::int64_t bytes, int index) {
        book.state = "dormant";
        const auto ending = hasFailed(book) ? TranscriptEnding::failed : TranscriptEnding::answered;
        return writeTranscript(book, {bytes, ending, {}, {}}, random, filler)
            .and_then([&] {
                return index % 2 == 0 ? writeEndedSession(book, filesOf(book, index)) : Result();
            })
            .and_then([&] { return writeSubagents(book, index % 10 == 0 ? 1 : 0); })
            .and_then([&] { return index % 15 == 0 ? writeTasks(book) : Result(); });
    }

    /// Transcripts of subagents, in a folder beside the session's own.
    Result writeSubagents(SessionBook& book, int count) {
        for (int index = 0; index < count; ++index) {
            const std::string agentId = "a" + random.hexadecimal(16);
            const std::string folder = joinPath(book.projectFolder, book.id + "/subagents");
            SessionBook subagent = book;
            subagent.usageByModel.clear();
            subagent.transcriptPath = joinPath(folder, "agent-" + agentId + ".jsonl");
            const TranscriptShape shape{20'000, TranscriptEnding::answered, {}, agentId};
            Result done = writeTranscript(subagent, shape, random, filler).and_then([&] {
                return writeFile(joinPath(folder, "agent-" + agentId + ".meta.json"),
                                 R"({"agentType":"general-purpose","spawnDepth":1})",
                                 book.lastActivityAt);
            });
            if (!done) return done;
            for (const auto& [model, usage] : subagent.usageByModel)
                book.subagentUsageByModel[model] += usage;
        }
        return {};
    }

    Result writeTasks(SessionBook& book) {
        book.tasks = random.between(2, 6);
        book.tasksCompleted = random.between(0, book.tasks - 1);
        for (std::int64_t number = 1; number <= book.tasks; ++number) {
            const Json task{{"id", std::to_string(number)},
                            {"subject", Filler::phrase(random, 4)},
                            {"description", Filler::sentence(random, 10)},
                            {"activeForm", Filler::phrase(random, 4)},
                            {"status", number <= book.tasksCompleted       ? "completed"
                                       : number == book.tasksCompleted + 1 ? "in_progress"
                                                                           : "pending"},
                            {"blocks", Json::array()},
                            {"blockedBy", Json::array()}};
            Result done = writeFile(at(fmt::format(".claude/tasks/{}/{}.json", book.id, number)),
                                    encodeJson(task), book.lastActivityAt);
            if (!done) return done;
        }
        return {};
    }

    Result writeRollouts() {
        std::vector<std::string> folders;
        for (const Project& project : projects)
            folders.push_back(project.cwd);
        return RolloutFleet(plan, at(".codex"), folders, random, filler).write(books);
    }

    /// After all sessions, so that they are the same with forks and without.
    Result writeForks() { return writeSessionForks(plan, random, filler, books); }

    Result writeUsage() {
        if (plan.usageDays <= 0) return {};
        return writeUsageHistory(plan,
                                 at("Library/Application Support/Claude/plan-usage-history.json"));
    }

    const Plan& plan;
    const std::string home;
    Random random;
    const Filler filler;
    std::vector<Project> projects;
    std::string desktopFolder;  ///< empty until there is a desktop session
    Books books;
};

}  // namespace

tl::expected<Books, GeneratorError> generate(const Plan& plan, const std::string& home) {
    std::error_code fault;
    const std::string folder = std::filesystem::absolute(home, fault).lexically_normal().string();
    if (fault) {
        return tl::unexpected(GeneratorError{GeneratorError::Kind::unwritable, home, fault});
    }
    return HomeWriter(plan, folder).write();
}

}  // namespace fleetwise::generator
