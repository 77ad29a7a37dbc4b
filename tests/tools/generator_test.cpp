#include "generator/generate.h"
#include "support/temporary_directory.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <filesystem>
#include <functional>
#include <map>
#include <set>
#include <sstream>

namespace fleetwise::testing {
namespace {

using namespace generator;

Plan smallPlan() {
    Plan plan;
    plan.sessions = 30;
    plan.live = 12;
    plan.megabytes = 2;
    plan.rollouts = 8;
    plan.projects = 7;
    plan.now = dateFromSeconds(1'795'226'000);
    return plan;
}

/// Calls `visit` with each line of the file, which must be JSON objects throughout.
void forEachRecord(const std::string& path, const std::function<void(const Json&)>& visit) {
    std::istringstream stream(contentsOf(path));
    std::string line;
    while (std::getline(stream, line)) {
        const auto record = parseJson(line);
        ASSERT_TRUE(record && record->is_object()) << path << ": " << line.substr(0, 200);
        visit(*record);
    }
}

std::set<std::string> filesBelow(const std::string& folder) {
    std::set<std::string> files;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
        if (entry.is_regular_file()) files.insert(entry.path().string());
    }
    return files;
}

/// What a plain reading of the transcript finds, put where the generator's own account stands.
SessionBook recount(const SessionBook& written) {
    SessionBook found = written;
    found.assistantTurns = found.toolCalls = found.contextTokens = 0;
    found.outputTokens = found.thinkingTokens = 0;
    found.lastReply.clear();
    found.lastTurnOrigin.reset();
    found.title.reset();
    found.usageByModel.clear();
    std::set<std::string> requests;
    forEachRecord(written.transcriptPath, [&](const Json& record) {
        const std::string type = record.at("type");
        if (type == "custom-title") found.title = record.at("customTitle");
        if (type == "ai-title") found.title = record.at("aiTitle");
        if (type == "last-prompt") found.lastPrompt = record.at("lastPrompt");
        if (type == "cost-state") found.billedUSD = record.at("totalCostUSD");
        EXPECT_EQ(record.value("cwd", written.cwd), written.cwd);
        EXPECT_EQ(record.value("sessionId", written.id), written.id);
        if (record.contains("origin")) found.lastTurnOrigin = record.at("origin").at("kind");
        if (type != "assistant") return;
        const Json& message = record.at("message");
        found.assistantTurns += 1;
        found.model = message.at("model");
        for (const Json& block : message.at("content")) {
            if (block.at("type") == "tool_use") found.toolCalls += 1;
            if (block.at("type") == "text") found.lastReply = block.at("text");
        }
        if (!message.contains("usage")) return;
        const Json& usage = message.at("usage");
        const auto tokens = [&](const char* key) { return usage.at(key).get<std::int64_t>(); };
        const Json& writes = usage.at("cache_creation");
        const std::int64_t thinking = usage.at("output_tokens_details").at("thinking_tokens");
        const std::int64_t write5m = writes.at("ephemeral_5m_input_tokens");
        const std::int64_t write1h = writes.at("ephemeral_1h_input_tokens");
        EXPECT_EQ(tokens("cache_creation_input_tokens"), write5m + write1h);
        found.contextTokens = tokens("input_tokens") + tokens("cache_read_input_tokens") +
                              tokens("cache_creation_input_tokens");
        found.outputTokens += tokens("output_tokens");
        found.thinkingTokens += thinking;
        if (!requests.insert(record.at("requestId")).second) return;
        Usage& total = found.usageByModel[found.model];
        total.requests += 1;
        total.input += tokens("input_tokens");
        total.output += tokens("output_tokens");
        total.thinking += thinking;
        total.cacheRead += tokens("cache_read_input_tokens");
        total.cacheWrite5m += write5m;
        total.cacheWrite1h += write1h;
    });
    return found;
}

/// What a plain reading of the session's subagents' transcripts finds.
std::map<std::string, Usage> recountSubagents(const SessionBook& book) {
    std::map<std::string, Usage> found;
    const std::string folder = book.projectFolder + "/" + book.id + "/subagents";
    if (!std::filesystem::exists(folder)) return found;
    for (const std::string& file : filesBelow(folder)) {
        if (!file.ends_with(".jsonl")) continue;
        SessionBook subagent = book;
        subagent.transcriptPath = file;
        for (const auto& [model, usage] : recount(subagent).usageByModel)
            found[model] += usage;
    }
    return found;
}

Json encoded(const SessionBook& book) {
    Books books;
    books.sessions.push_back(book);
    return encodeBooks(books).at("sessions").at(0);
}

class Generator : public ::testing::Test {
protected:
    void SetUp() override {
        const auto written = generate(smallPlan(), home.path());
        ASSERT_TRUE(written) << written.error().path;
        books = *written;
    }

    Json jsonOf(const std::string& path) const {
        return parseJson(contentsOf(path)).value_or(Json());
    }

    TemporaryDirectory home;
    Books books;
};

TEST_F(Generator, transcriptsHoldWhatTheBooksSay) {
    ASSERT_EQ(books.sessions.size(), 30U);
    std::set<std::string> transcripts;
    std::int64_t bytes = 0;
    for (const SessionBook& book : books.sessions) {
        SCOPED_TRACE(book.transcriptPath);
        EXPECT_EQ(encoded(recount(book)), encoded(book));
        EXPECT_EQ(recountSubagents(book), book.subagentUsageByModel);
        EXPECT_EQ(static_cast<std::int64_t>(contentsOf(book.transcriptPath).size()),
                  book.transcriptBytes);
        bytes += book.transcriptBytes;
        transcripts.insert(book.transcriptPath);
    }
    EXPECT_EQ(bytes, books.transcriptBytes);
    EXPECT_NEAR(static_cast<double>(bytes), 2e6, 0.2e6);

    std::set<std::string> found;
    for (const std::string& file : filesBelow(home.at(".claude/projects"))) {
        if (file.ends_with(".jsonl") && file.find("/subagents/") == std::string::npos) {
            found.insert(file);
        }
    }
    EXPECT_EQ(found, transcripts);
}

TEST_F(Generator, liveSessionsShowEveryState) {
    std::map<std::string, Json> entries;
    for (const std::string& file : filesBelow(home.at(".claude/sessions"))) {
        const Json entry = jsonOf(file);
        entries[entry.at("sessionId")] = entry;
    }
    std::set<std::string> states;
    for (const SessionBook& book : books.sessions) {
        SCOPED_TRACE(book.id);
        EXPECT_EQ(entries.count(book.id), book.isLive ? 1U : 0U);
        states.insert(book.state);
        if (!book.isLive) continue;
        EXPECT_EQ(entries[book.id].at("cwd"), book.cwd);
        EXPECT_EQ(entries[book.id].at("pid"), 1);
    }
    EXPECT_EQ(entries.size(), 12U);
    EXPECT_THAT(states, ::testing::UnorderedElementsAre(
                            "decision", "waiting", "failed", "done", "working",
                            "waitingForSubagents", "compacting", "idle", "scheduled", "dormant"));

    std::set<std::string> recorded;
    const double now = secondsSince1970(smallPlan().now);
    for (const std::string& file : filesBelow(home.at(".claude/fleetwise/status"))) {
        const Json record = jsonOf(file);
        EXPECT_LT(record.at("event_ts"), now);
        recorded.insert(record.at("session_id"));
    }
    EXPECT_EQ(recorded.size(), 11U + 9U) << "all live sessions but one, half of the others";
}

/// Holds the file to its book; a copied history counts only by what follows it.
void expectRollout(const RolloutBook& book) {
    Json meta;
    Json total;
    Json last;
    std::string state;
    forEachRecord(book.path, [&](const Json& line) {
        const Json& payload = line.at("payload");
        if (line.at("type") == "session_meta" && meta.is_null()) meta = payload;
        if (line.at("type") != "event_msg") return;
        const std::string event = payload.at("type");
        if (event == "task_started") state = "working";
        if (event == "task_complete") state = payload.contains("error") ? "failed" : "done";
        if (event == "turn_aborted") state = "idle";
        if (event != "token_count") return;
        total = payload.at("info").at("total_token_usage");
        last = payload.at("info").at("last_token_usage");
    });
    EXPECT_EQ(meta.at("id"), book.id);
    EXPECT_EQ(meta.at("cwd"), book.cwd);
    EXPECT_EQ(meta.value("forked_from_id", ""), book.parentId);
    EXPECT_EQ(state, book.state);
    EXPECT_EQ(last.at("input_tokens"), book.lastInputTokens);
    EXPECT_EQ(total.at("input_tokens"), book.inputTokens);
    EXPECT_EQ(total.at("cached_input_tokens"), book.cachedInputTokens);
    EXPECT_EQ(total.at("cache_write_input_tokens"), book.cacheWriteTokens);
    EXPECT_EQ(total.at("output_tokens"), book.outputTokens);
    EXPECT_EQ(total.at("reasoning_output_tokens"), book.reasoningTokens);
}

TEST_F(Generator, rolloutsHoldWhatTheBooksSay) {
    ASSERT_EQ(books.rollouts.size(), 8U);
    std::set<std::string> paths;
    std::int64_t bytes = 0;
    for (const RolloutBook& book : books.rollouts) {
        SCOPED_TRACE(book.path);
        paths.insert(book.path);
        bytes += static_cast<std::int64_t>(contentsOf(book.path).size());
        expectRollout(book);
    }
    EXPECT_EQ(filesBelow(home.at(".codex/sessions")), paths);
    EXPECT_EQ(bytes, books.rolloutBytes);
}

/// What stands in the file behind its first line.
std::string afterFirstLine(const std::string& path) {
    const std::string text = contentsOf(path);
    return text.substr(text.find('\n') + 1);
}

TEST(GeneratorOfAllKinds, descendantsOfRolloutsBeginWithTheirParents) {
    const TemporaryDirectory home;
    Plan plan = smallPlan();
    plan.subagentRollouts = 9;
    plan.forkedRollouts = 5;
    plan.compressedRollouts = 2;
    const Books books = generate(plan, home.path()).value_or(Books());
    ASSERT_EQ(books.rollouts.size(), 8U + 9U + 5U);
    std::map<std::string, std::string> textById;
    std::map<RolloutKind, int> kinds;
    for (const RolloutBook& book : books.rollouts) {
        SCOPED_TRACE(book.path);
        expectRollout(book);
        kinds[book.kind] += 1;
        textById[book.id] = contentsOf(book.path);
        if (book.kind == RolloutKind::session) continue;
        const std::string& parent = textById.at(book.parentId);
        const std::string own = afterFirstLine(book.path);
        const Json meta = parseJson(textById[book.id].substr(0, textById[book.id].find('\n')))
                              .value_or(Json())["payload"];
        if (book.kind == RolloutKind::fork) {
            EXPECT_TRUE(own.starts_with(parent));
            EXPECT_EQ(meta["source"], book.source);
        } else {
            EXPECT_TRUE(own.starts_with(parent.substr(0, parent.find('\n') + 1)));
            EXPECT_EQ(meta["thread_source"], "subagent");
            EXPECT_EQ(meta["source"]["subagent"]["thread_spawn"]["parent_thread_id"],
                      book.parentId);
        }
    }
    EXPECT_EQ(kinds[RolloutKind::subagent], 9);
    EXPECT_EQ(kinds[RolloutKind::fork], 5);
    ASSERT_EQ(books.compressedRollouts.size(), 2U);
    for (const std::string& path : books.compressedRollouts)
        EXPECT_TRUE(path.ends_with(".jsonl.zst") && !contentsOf(path).empty()) << path;
}

/// The ids of the transcript's requests, each once.
std::set<std::string> requestsOf(const std::string& path) {
    std::set<std::string> requests;
    forEachRecord(path, [&](const Json& record) {
        if (record.contains("requestId")) requests.insert(record.at("requestId"));
    });
    return requests;
}

TEST(GeneratorOfAllKinds, forkedSessionsRepeatRequestsOfTheirParents) {
    const TemporaryDirectory home;
    Plan plan = smallPlan();
    plan.forkedSessions = 6;
    const Books books = generate(plan, home.path()).value_or(Books());
    ASSERT_EQ(books.sessions.size(), 30U + 6U);
    std::map<std::string, SessionBook> byId;
    int forksOfForks = 0;
    for (const SessionBook& book : books.sessions) {
        byId[book.id] = book;
        if (!book.forkedFrom) continue;
        SCOPED_TRACE(book.transcriptPath);
        EXPECT_EQ(encoded(recount(book)), encoded(book));
        const SessionBook& parent = byId.at(*book.forkedFrom);
        forksOfForks += parent.forkedFrom ? 1 : 0;
        const std::set<std::string> own = requestsOf(book.transcriptPath);
        const std::set<std::string> theirs = requestsOf(parent.transcriptPath);
        std::vector<std::string> repeated;
        std::ranges::set_intersection(own, theirs, std::back_inserter(repeated));
        EXPECT_EQ(static_cast<std::int64_t>(repeated.size()), book.inheritedRequests);
        EXPECT_GT(book.inheritedRequests, 0);
        EXPECT_GT(own.size(), repeated.size());
        std::int64_t inherited = 0;
        for (const auto& [model, usage] : book.inheritedUsageByModel)
            inherited += usage.requests;
        EXPECT_EQ(inherited, book.inheritedRequests);
    }
    EXPECT_EQ(forksOfForks, 2);
}

TEST(GeneratorOfAllKinds, desktopSessionsHaveMetadata) {
    const TemporaryDirectory home;
    Plan plan = smallPlan();
    plan.desktop = 15;
    const Books books = generate(plan, home.path()).value_or(Books());
    std::set<std::string> paths;
    std::map<std::string, int> counts;
    for (const SessionBook& book : books.sessions) {
        if (!book.desktop) continue;
        SCOPED_TRACE(book.desktop->path);
        EXPECT_EQ(book.entrypoint, "claude-desktop");
        EXPECT_EQ(encoded(recount(book)), encoded(book));
        paths.insert(book.desktop->path);
        const Json metadata = parseJson(contentsOf(book.desktop->path)).value_or(Json());
        EXPECT_EQ(metadata.at("cliSessionId"), book.id);
        counts["live"] += book.isLive ? 1 : 0;
        counts["archived"] += book.desktop->isArchived ? 1 : 0;
        counts["failed"] += book.desktop->error ? 1 : 0;
    }
    EXPECT_EQ(counts, (std::map<std::string, int>{{"live", 6}, {"archived", 3}, {"failed", 2}}));
    EXPECT_EQ(filesBelow(home.at("Library/Application Support/Claude/claude-code-sessions")),
              paths);
    EXPECT_EQ(paths.size(), 15U);
}

TEST_F(Generator, theSameSeedGivesTheSameFiles) {
    const auto contents = [&] {
        std::map<std::string, std::string> read;
        for (const std::string& file : filesBelow(home.path()))
            read[file] = contentsOf(file);
        return read;
    };
    const auto first = contents();
    Plan plan = smallPlan();
    for (const bool isOtherSeed : {false, true}) {
        SCOPED_TRACE(isOtherSeed);
        for (const char* folder : {".claude", ".codex", "work"})
            std::filesystem::remove_all(home.at(folder));
        if (isOtherSeed) plan.seed = 2;
        const auto again = generate(plan, home.path());
        ASSERT_TRUE(again);
        EXPECT_EQ(contents() == first, !isOtherSeed);
        EXPECT_EQ(encodeBooks(*again) == encodeBooks(books), !isOtherSeed);
    }
}

TEST_F(Generator, leavesAnOccupiedHomeAlone) {
    const auto before = filesBelow(home.path());
    const auto refused = generate(smallPlan(), home.path());
    ASSERT_FALSE(refused);
    EXPECT_EQ(refused.error().kind, GeneratorError::Kind::occupied);
    EXPECT_EQ(refused.error().path, home.at(".claude"));
    EXPECT_EQ(filesBelow(home.path()), before);
}

}  // namespace
}  // namespace fleetwise::testing
