#include "fleet/collection_pass.h"

#include "sources/project_folder.h"

#include <algorithm>

namespace fleetwise {

namespace {

constexpr Seconds settlingTime{1};
constexpr Seconds statusFileLifetime{2'592'000};

}  // namespace

CollectionPass::CollectionPass(const FleetSnapshot::Input& givenInput,
                               const FleetSnapshot::Sources& givenSources, Date givenNow)
    : input(givenInput),
      sources(givenSources),
      now(givenNow),
      rules{.now = givenNow, .doneGracePeriod = givenInput.doneGracePeriod} {}

void CollectionPass::loadDesktopMetadata() {
    desktopSessions = sources.desktop.load(sources.desktopDirectory, skippedDesktop);
}

void CollectionPass::loadStatusRecords() {
    records = StatusStore::load(sources.statusDirectory, skippedStatus);
}

void CollectionPass::addLiveSessions() {
    for (const auto& entry : SessionRegistry::liveEntries(sources.sessionsDirectory,
                                                          sources.processes, skippedRegistry)) {
        Session session = liveSession(entry, recordOf(entry.sessionId), desktopOf(entry.sessionId),
                                      rules, isUnsettled);
        findHost(session);
        add(std::move(session));
    }
}

void CollectionPass::addDormantSessions() {
    transcripts = SessionHistory::transcripts(sources.projectsDirectory, skippedTranscripts);
    collection.searchedEnded = input.dormantMaxAge != Seconds(0) && !transcripts.empty();
    for (const auto& candidate : SessionHistory::candidates(
             input.dormantMaxAge, desktopSessions, input.keepRegardlessOfAge, transcripts, now)) {
        const std::string& id = candidate.sessionId;
        if (isListed(id) || !mayList(id, SessionState::dormant)) continue;
        add(dormantSession(candidate, recordOf(id), desktopOf(id)));
    }
}

void CollectionPass::addCodexSessions() {
    if (!CodexStore::isAvailable(joinPath(sources.codexDirectory, "sessions"))) return;
    const auto processes = sources.codexProcesses.observe(now);
    auto listing = sources.rollouts.load(
        sources.codexDirectory,
        [&](const FoundFile& file) { return isRolloutWished(file, processes); }, skippedRollouts);
    unlistedRollouts = std::move(listing.otherIds);
    const std::size_t rollouts = listing.rollouts.size();
    auto threads = codexThreads(std::move(listing.rollouts), processes, now);
    collection.codexFiles = {.sessions = threads.size(),
                             .branches = rollouts - threads.size(),
                             .compressed = listing.compressed};
    collection.sessions.reserve(collection.sessions.size() + threads.size());
    for (CodexThread& thread : threads) {
        const std::string id = thread.rollout.sessionId;
        if (isListed(id)) continue;
        const StatusStore::Record* record = recordOf(thread);
        Session session = codexSession(std::move(thread), record, rules);
        if (session.isLive || (isRecentEnough(session) && mayList(id, session.state))) {
            findHost(session);
            add(std::move(session));
        } else {
            unlistedRollouts.insert(id);
        }
    }
}

void CollectionPass::addForeignSessions() {
    for (const auto& [id, record] : records) {
        if (isListed(id) || isEndedSessionOfKnownAgent(*record)) continue;
        Session session = foreignSession(*record, rules);
        if ((session.isLive || isRecentEnough(session)) && mayList(id, session.state)) {
            add(std::move(session));
        }
    }
}

void CollectionPass::hideCodex() {
    if (!input.showsCodex) {
        collection.sessions = FleetSnapshot::withoutCodex(std::move(collection.sessions));
    }
}

void CollectionPass::describeSessions() {
    for (Session& session : collection.sessions) {
        std::map<std::string, TaskEnding> endings;
        if (session.agent.isClaude()) {
            if (const auto file = transcriptOf(session)) {
                endings = describeFromTranscript(session, *file);
            }
            session.tasks = sources.tasks.progress(session.id, skippedTasks);
        }
        describeBackground(session, endings);
        if (session.cwd) session.gitBranch = branchOf(*session.cwd);
        session.isFavorite = input.keepRegardlessOfAge.contains(session.id);
        if (const DesktopMetadata* desktop = desktopOf(session.id)) {
            if (!session.model) session.model = desktop->model;
            if (desktop->title && session.title == desktop->title) {
                collection.titledByDesktop.insert(session.id);
            }
        }
    }
    skippedTranscripts += sources.transcripts.takeSkipped();
}

void CollectionPass::prune() {
    std::set<std::string> ids;
    std::set<std::string> folders;
    std::set<std::string> paths;
    std::set<std::int32_t> pids;
    for (const Session& session : collection.sessions) {
        ids.insert(session.id);
        if (session.cwd) folders.insert(*session.cwd);
        if (session.pid) pids.insert(*session.pid);
        if (const auto file = transcripts.find(session.id); file != transcripts.end()) {
            paths.insert(file->second.path);
        }
    }
    StatusStore::prune(ids, statusFileLifetime, sources.statusDirectory, now);
    sources.backgroundTasks.prune(ids);
    sources.git.retain(folders);
    sources.processTree.forgetAllBut(pids);
    sources.transcripts.retain(paths);
}

void CollectionPass::sort() {
    // A session is large: it moves once.
    std::vector<Session*> order;
    for (Session& session : collection.sessions)
        order.push_back(&session);
    std::stable_sort(order.begin(), order.end(), [](const Session* left, const Session* right) {
        return Session::precedes(*left, *right);
    });
    std::vector<Session> sorted;
    sorted.reserve(order.size());
    for (Session* session : order)
        sorted.push_back(std::move(*session));
    collection.sessions = std::move(sorted);
}

FleetSnapshot::Collection CollectionPass::takeCollection() {
    if (isUnsettled) collection.recheckIn = settlingTime;
    for (const auto& [source, tally] :
         {std::pair("Desktop", skippedDesktop), std::pair("Status", skippedStatus),
          std::pair("Registry", skippedRegistry), std::pair("Transkripte", skippedTranscripts),
          std::pair("Aufgaben", skippedTasks), std::pair("Codex", skippedRollouts)}) {
        if (tally.total() > 0) collection.skipped.emplace_back(source, tally);
    }
    return std::move(collection);
}

bool CollectionPass::mayList(const std::string& id, SessionState state) {
    if (!input.dismissed.contains(id)) return true;
    collection.leftOut.emplace(id, state);
    return false;
}

bool CollectionPass::isRecentEnough(const Session& session) const {
    if (!input.dormantMaxAge || input.keepRegardlessOfAge.contains(session.id)) return true;
    if (!session.lastActivityAt) return false;
    // A date ahead of the clock is no younger than now.
    return std::max(Seconds(0), now - *session.lastActivityAt) < *input.dormantMaxAge;
}

bool CollectionPass::isRolloutWished(const FoundFile& file,
                                     const std::vector<CodexProcess>& processes) const {
    const Seconds age = now - modificationDate(file.stamp);
    const Seconds limit =
        std::min(input.dormantMaxAge.value_or(CodexStore::maximumAge), CodexStore::maximumAge);
    if ((limit.count() > 0 && age <= limit) || mayBeLive(file, processes, now)) return true;
    const std::string id = CodexStore::idInName(file.name);
    const StatusStore::Record* record = recordOf(id);
    return input.keepRegardlessOfAge.contains(id) || (record != nullptr && asksUser(*record));
}

bool CollectionPass::isEndedSessionOfKnownAgent(const StatusStore::Record& record) const {
    const SessionAgent agent(record.agent.value_or(std::string()));
    if (!agent.isClaude() && !agent.isCodex()) return false;
    return record.state == rawValue(SessionState::dormant) ||
           transcripts.contains(record.sessionId) || unlistedRollouts.contains(record.sessionId);
}

void CollectionPass::add(Session session) {
    listed.insert(session.id);
    collection.sessions.push_back(std::move(session));
}

const StatusStore::Record* CollectionPass::recordOf(const std::string& id) const {
    const auto found = records.find(id);
    return found == records.end() ? nullptr : found->second.get();
}

const StatusStore::Record* CollectionPass::recordOf(const CodexThread& thread) const {
    for (const CodexThread::Branch& branch : thread.branches) {
        const StatusStore::Record* record = recordOf(branch.sessionId);
        if (record != nullptr && asksUser(*record) && lastEventDate(*record) > branch.lastEventAt)
            return record;
    }
    return recordOf(thread.rollout.sessionId);
}

const DesktopMetadata* CollectionPass::desktopOf(const std::string& id) const {
    const auto found = desktopSessions.find(id);
    return found == desktopSessions.end() ? nullptr : &found->second;
}

std::optional<TranscriptFile> CollectionPass::transcriptOf(const Session& session) const {
    // The listing of this pass has found nearly every transcript; only one that came after it is
    // looked for by its path.
    if (const auto found = transcripts.find(session.id); found != transcripts.end()) {
        return found->second;
    }
    const auto path = sources.transcripts.transcriptURL(session.id, session.cwd);
    if (!path) return {};
    const auto entry = inspectFile(*path);
    if (!entry || entry->kind != FileKind::regular) return {};
    return TranscriptFile{.path = *path, .stamp = entry->stamp};
}

std::string CollectionPass::projectFolderOf(const Session& session) const {
    // The agent cuts the names of long folders in a way of its own; where it has written a
    // transcript, its name is known.
    const auto transcript = transcripts.find(session.id);
    if (transcript == transcripts.end()) {
        return projectFolderName(session.cwd.value_or(std::string()));
    }
    const std::string& path = transcript->second.path;
    const auto end = path.find_last_of('/');
    const auto begin = path.find_last_of('/', end - 1) + 1;
    return path.substr(begin, end - begin);
}

void CollectionPass::findHost(Session& session) {
    if (!session.pid) return;
    if (const auto host = sources.processTree.guiAncestor(*session.pid)) {
        session.hostApp = host->name;
        session.hostBundleId = host->bundleId;
    }
}

const std::optional<std::string>& CollectionPass::branchOf(const std::string& cwd) {
    const auto [entry, isNew] = branches.try_emplace(cwd);
    if (isNew) entry->second = sources.git.branch(cwd, now);
    return entry->second;
}

std::map<std::string, TaskEnding> CollectionPass::describeFromTranscript(
    Session& session, const TranscriptFile& file) {
    std::map<std::string, TaskEnding> endings;
    if (input.includeStats) {
        if (auto reading = sources.transcripts.read(file)) {
            session.stats = std::move(reading->stats);
            session.model = session.stats->model;
            session.federationId = std::move(reading->federationId);
            if (!session.effort) session.effort = std::move(reading->effort);
            if (!session.cwd) session.cwd = session.stats->cwd;
            endings = std::move(reading->taskEndings);
        }
    }
    if (!session.title || !session.cwd) {
        const auto label = sources.transcripts.label(file);
        if (!session.title) session.title = label.text();
        if (!session.cwd) session.cwd = label.cwd;
    }
    const Date modified = modificationDate(file.stamp);
    session.lastActivityAt = std::max(session.lastActivityAt.value_or(modified), modified);
    return endings;
}

void CollectionPass::describeBackground(Session& session,
                                        const std::map<std::string, TaskEnding>& endings) {
    const StatusStore::Record* record = recordOf(session.id);
    static const BackgroundTaskStore::Launches noLaunches;
    const auto& launches = record != nullptr ? record->background : noLaunches;
    BackgroundTaskStore::Surroundings around;
    around.agentIsLive = session.isLive;
    around.lastActivityAt = session.lastActivityAt;
    around.endings = &endings;
    if (!launches.empty()) {
        around.outputDirectory =
            backgroundOutputDirectory(session.id, projectFolderOf(session), sources.userId);
    }
    session.backgroundTasks = sources.backgroundTasks.tasks(session.id, launches, around, now);
}

}  // namespace fleetwise
