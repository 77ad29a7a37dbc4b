#include "fleet/codex_threads.h"

#include <algorithm>
#include <string>
#include <unordered_map>

namespace fleetwise {

namespace {

using Threads = std::vector<CodexThread>;
using NumbersById = std::unordered_map<std::string, std::size_t>;

constexpr Seconds busyPatience{300};

/// The start of a process is known to a second only.
constexpr Seconds clockTolerance{2};

bool isRecent(Date date, Date now) {
    return now - date <= busyPatience && date - now <= busyPatience;
}

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

void markByFolder(Threads& threads, const CodexProcess& process) {
    const auto mayBeItsOwn = [&](const CodexThread& thread) {
        const CodexRollout& rollout = thread.rollout;
        return !thread.isLive && rollout.kind != RolloutKind::subagent && rollout.cwd &&
               rollout.cwd == process.cwd && mayHaveWritten(process, rollout.modifiedAt);
    };
    const auto latest = std::find_if(threads.begin(), threads.end(), mayBeItsOwn);
    if (latest != threads.end()) markLive(*latest, process.pid);
}

void markLiveThreads(Threads& threads, const std::vector<CodexProcess>& processes, Date now) {
    for (const CodexProcess& process : processes)
        markByOpenFiles(threads, process);
    for (const CodexProcess& process : processes)
        markByFolder(threads, process);
    for (CodexThread& thread : threads) {
        const CodexRollout& rollout = thread.rollout;
        if (isBusy(rollout.state) && isRecent(rollout.lastEventAt, now)) thread.isLive = true;
    }
}

/// The session that a branch, or the branch that it comes from, and so on, comes from.
CodexThread* rootOf(Threads& threads, const NumbersById& numbers, const CodexThread& branch) {
    const CodexThread* current = &branch;
    // No chain is longer, but for one that closes to a circle.
    for (std::size_t step = 0; step < threads.size(); ++step) {
        const auto& parentId = current->rollout.parentId;
        const auto parent = parentId ? numbers.find(*parentId) : numbers.end();
        if (parent == numbers.end()) return nullptr;
        CodexThread& found = threads[parent->second];
        if (found.rollout.kind == RolloutKind::session) return &found;
        current = &found;
    }
    return nullptr;
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

bool mayBeLive(const FoundFile& rollout, const std::vector<CodexProcess>& processes, Date now) {
    const Date modifiedAt = modificationDate(rollout.stamp);
    return isRecent(modifiedAt, now) ||
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
    for (const CodexThread& thread : threads) {
        if (!isBranch(thread)) continue;
        if (CodexThread* session = rootOf(threads, numbers, thread)) addBranch(*session, thread);
    }
    std::erase_if(threads, isBranch);
    return threads;
}

}  // namespace fleetwise
