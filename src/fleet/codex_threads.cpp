#include "fleet/codex_threads.h"

#include <algorithm>
#include <functional>
#include <string>
#include <string_view>
#include <unordered_map>

namespace fleetwise {

namespace {

using Threads = std::vector<CodexThread>;
using NumbersById = std::unordered_map<std::string, std::size_t>;

constexpr Seconds busyPatience{300};

/// The start of a process is known to a second only.
constexpr Seconds clockTolerance{2};

bool mayHaveWritten(const CodexProcess& process, Date modifiedAt) {
    return process.openRollouts.empty() && process.startedAt &&
           *process.startedAt <= modifiedAt + clockTolerance;
}

void markLive(CodexThread& thread, std::int32_t pid) {
    thread.isLive = true;
    if (!thread.pid) thread.pid = pid;
}

void markByOpenFiles(Threads& threads, const CodexProcess& process) {
    for (CodexThread& thread : threads) {
        if (process.openRollouts.contains(thread.rollout.fileName)) markLive(thread, process.pid);
    }
}

std::string_view withoutLastSlash(std::string_view folder) {
    if (folder.size() > 1 && folder.ends_with('/')) folder.remove_suffix(1);
    return folder;
}

void markByFolder(Threads& threads, const CodexProcess& process) {
    if (!process.cwd) return;
    CodexThread* latest = nullptr;
    for (CodexThread& thread : threads) {
        const CodexRollout& rollout = thread.rollout;
        const bool mayBeItsOwn = !thread.isLive && rollout.kind != RolloutKind::subagent &&
                                 rollout.cwd && withoutLastSlash(*rollout.cwd) == *process.cwd &&
                                 mayHaveWritten(process, rollout.modifiedAt);
        if (!mayBeItsOwn) continue;
        if (latest == nullptr) latest = &thread;
        if (!rollout.startedAt || *rollout.startedAt + clockTolerance < *process.startedAt)
            continue;
        latest = &thread;
        break;
    }
    if (latest != nullptr) markLive(*latest, process.pid);
}

void markLiveThreads(Threads& threads, std::vector<CodexProcess> processes, Date now) {
    for (const CodexProcess& process : processes)
        markByOpenFiles(threads, process);
    // The later a process began, the fewer rollouts it can have written.
    std::ranges::stable_sort(processes, std::greater(), &CodexProcess::startedAt);
    for (const CodexProcess& process : processes)
        markByFolder(threads, process);
    for (CodexThread& thread : threads) {
        const CodexRollout& rollout = thread.rollout;
        if (isBusy(rollout.state) && isRecentWork(rollout.lastEventAt, now)) thread.isLive = true;
    }
}

/// For each thread the session that it, or the branch that it comes from, and so on, comes from;
/// null where that is not among them or a chain closes to a circle.
std::vector<CodexThread*> rootsOf(Threads& threads, const NumbersById& numbers) {
    std::vector<CodexThread*> roots(threads.size());
    std::vector<bool> isSeen(threads.size());
    std::vector<std::size_t> chain;
    for (std::size_t first = 0; first < threads.size(); ++first) {
        CodexThread* root = nullptr;
        for (std::size_t number = first;;) {
            if (isSeen[number]) {
                root = roots[number];
                break;
            }
            isSeen[number] = true;
            chain.push_back(number);
            CodexThread& thread = threads[number];
            if (thread.rollout.kind == RolloutKind::session) {
                root = &thread;
                break;
            }
            const auto& parentId = thread.rollout.parentId;
            const auto parent = parentId ? numbers.find(*parentId) : numbers.end();
            if (parent == numbers.end()) break;
            number = parent->second;
        }
        for (const std::size_t number : chain)
            roots[number] = root;
        chain.clear();
    }
    return roots;
}

/// Lets the session show what goes on in its fork.
void follow(CodexThread& session, const CodexThread& fork) {
    CodexRollout shown = fork.rollout;
    shown.sessionId = session.rollout.sessionId;
    shown.kind = session.rollout.kind;
    shown.parentId = session.rollout.parentId;
    shown.fileName = session.rollout.fileName;
    shown.startedAt = session.rollout.startedAt;
    shown.firstPrompt = session.rollout.firstPrompt;
    if (session.rollout.title) shown.title = session.rollout.title;
    session.rollout = std::move(shown);
    if (fork.pid) session.pid = fork.pid;
}

void addBranch(CodexThread& session, const CodexThread& branch) {
    session.lastActivityAt = std::max(session.lastActivityAt, branch.lastActivityAt);
    session.branches.push_back(
        {.sessionId = branch.rollout.sessionId, .lastEventAt = branch.rollout.lastEventAt});
    if (!branch.isLive) return;
    const CodexRollout& rollout = branch.rollout;
    if (rollout.kind == RolloutKind::subagent) {
        if (isBusy(rollout.state)) ++session.runningSubagents;
        if (!session.pid) session.pid = branch.pid;
    } else if (!session.isLive || rollout.lastEventAt > session.rollout.lastEventAt) {
        follow(session, branch);
    }
    session.isLive = true;
}

}  // namespace

bool isRecentWork(Date date, Date now) {
    return now - date <= busyPatience && date - now <= busyPatience;
}

bool mayBeLive(const FoundFile& rollout, const std::vector<CodexProcess>& processes, Date now) {
    const Date modifiedAt = modificationDate(rollout.stamp);
    return isRecentWork(modifiedAt, now) ||
           std::any_of(processes.begin(), processes.end(), [&](const CodexProcess& process) {
               return process.openRollouts.contains(rollout.name) ||
                      mayHaveWritten(process, modifiedAt);
           });
}

std::vector<CodexThread> codexThreads(std::vector<CodexRollout> rollouts,
                                      const std::vector<CodexProcess>& processes, Date now) {
    Threads threads;
    NumbersById numbers;
    threads.reserve(rollouts.size());
    for (CodexRollout& rollout : rollouts) {
        numbers.emplace(rollout.sessionId, threads.size());
        const Date lastActivityAt = rollout.lastEventAt;
        threads.push_back({.rollout = std::move(rollout), .lastActivityAt = lastActivityAt});
    }
    markLiveThreads(threads, processes, now);
    const auto isBranch = [](const CodexThread& thread) {
        return thread.rollout.kind != RolloutKind::session;
    };
    const std::vector<CodexThread*> roots = rootsOf(threads, numbers);
    for (std::size_t number = 0; number < threads.size(); ++number) {
        if (roots[number] != nullptr && isBranch(threads[number]))
            addBranch(*roots[number], threads[number]);
    }
    std::erase_if(threads, isBranch);
    return threads;
}

}  // namespace fleetwise
