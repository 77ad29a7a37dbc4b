#include "cost/cost_store.h"

#include "cost/cost_sum.h"
#include "foundation/json.h"
#include "generator/generate.h"
#include "support/temporary_directory.h"
#include "support/usage_samples.h"

#include <gmock/gmock.h>

#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <random>
#include <thread>

namespace fleetwise::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::Pair;
using ::testing::UnorderedElementsAre;

const Calendar utc = ::date::locate_zone("Etc/UTC");

/// A home folder with a store for its costs.
struct CostHome {
    TemporaryDirectory folder;
    Date now = currentDate();

    CostStore::Places places() const {
        return {folder.at("projects"), folder.at("codex"), folder.at("cost-index.json")};
    }

    std::unique_ptr<CostStore> store(unsigned threads = 2) const {
        return std::make_unique<CostStore>(places(), utc, threads);
    }

    std::string write(const std::string& session, const std::string& text) const {
        return folder.write("projects/work/" + session + ".jsonl", text);
    }

    /// What a store without any past finds.
    SessionCosts fresh() const {
        CostStore other({places().projectsDirectory, places().codexDirectory, {}}, utc, 1);
        other.refresh(now, true);
        return *other.sessions();
    }

    std::string cacheText() const { return contentsOf(places().cacheFile); }
};

std::int64_t outputOf(const CostStore& store, const std::string& id) {
    const auto session = store.session(id);
    return session ? session->tally().output : -1;
}

/// Compared by what is told of them: parents of equal forks may change places.
std::map<std::string, TokenTally> tallies(const SessionCosts& sessions) {
    std::map<std::string, TokenTally> tallies;
    for (const auto& [id, session] : sessions)
        tallies[id] = session->tally();
    return tallies;
}

std::vector<std::string> idsOf(const SessionCosts& sessions) {
    std::vector<std::string> ids;
    for (const auto& [id, session] : sessions)
        ids.push_back(id);
    return ids;
}

CostSum sumOf(const SessionCosts& sessions) {
    return CostSum(std::make_shared<SessionCosts>(sessions));
}

TokenTally total(const SessionCosts& sessions, const std::vector<std::string>& ids) {
    return sumOf(sessions).of(ids, Prices::Book::builtIn()).tally;
}

TEST(CostStore, readsOnlyWhatHasChanged) {
    const CostHome home;
    const std::string path = home.write("a", usageRecord("1", 1));
    home.write("b", usageRecord("2", 10));
    home.write("b/subagents/agent-x", usageRecord("3", 100));
    const auto store = home.store();
    EXPECT_EQ(store->refresh(home.now, true).filesRead, 3U);
    EXPECT_EQ(outputOf(*store, "a"), 1);
    EXPECT_EQ(outputOf(*store, "b"), 110);
    const std::string written = home.cacheText();

    CostStore::Scan scan = store->refresh(home.now, true);
    EXPECT_EQ(scan.filesRead, 0U);
    EXPECT_FALSE(scan.hasChanged);
    home.folder.append("projects/work/a.jsonl", usageRecord("4", 2));
    EXPECT_EQ(home.store()->refresh(home.now, true).filesRead, 1U);
    EXPECT_NE(home.cacheText(), written);

    home.folder.append("projects/work/b/subagents/agent-x.jsonl", usageRecord("5", 1000));
    EXPECT_EQ(store->refresh(home.now, true).filesRead, 3U);
    EXPECT_EQ(outputOf(*store, "a"), 3);
    EXPECT_EQ(outputOf(*store, "b"), 1110);

    home.write("a", usageRecord("9", 7));
    std::filesystem::remove(home.folder.at("projects/work/b.jsonl"));
    EXPECT_TRUE(store->refresh(home.now, true).hasChanged);
    EXPECT_EQ(outputOf(*store, "a"), 7);
    EXPECT_EQ(outputOf(*store, "b"), 1110) << "what it cost stays known";
    EXPECT_EQ(store->refresh(home.now, true).filesRead, 0U);
}

TEST(CostStore, writesItsCacheInTheKnownForm) {
    const CostHome home;
    const std::string path = home.write(
        "a", usageRecord("1", 5) +
                 R"({"type":"cost-state","totalCostUSD":0.5,"modelUsage":{"m":{"costUSD":0.5}}})");
    setModificationDate(path, dateFromSeconds(978'307'200.5));
    home.store()->refresh(home.now, true);
    const auto cache = parseJson(home.cacheText()).value();
    EXPECT_EQ(cache.at("version"), 1);
    const Json file{
        {"size", std::filesystem::file_size(path)}, {"modified", 0.5}, {"sessionId", "a"}};
    EXPECT_EQ(cache.at("files"), (Json{{path, file}}));
    const Json& session = cache.at("sessions").at("a");
    EXPECT_EQ(session.at("agent"), "claude");
    const Json tally{
        {"input", 0},        {"output", 5},       {"thinking", 0},         {"cacheRead", 0},
        {"cacheWrite5m", 0}, {"cacheWrite1h", 0}, {"cacheWriteUnknown", 0}};
    const Json slice{{"tally", tally}, {"efforts", Json::object()}, {"requests", 1}};
    EXPECT_EQ(session.at("byModel"), (Json{{"claude-opus-5-5", slice}}));
    EXPECT_EQ(session.at("billedUSD"), 0.5);
    const Json billed{{"model", "m"},   {"input", 0},         {"output", 0},
                      {"cacheRead", 0}, {"cacheCreation", 0}, {"webSearchRequests", 0},
                      {"costUSD", 0.5}};
    EXPECT_EQ(session.at("billedModels"), Json::array({billed}));
    EXPECT_EQ(session.at("lastModel"), "claude-opus-5-5");
    EXPECT_FALSE(session.contains("lastEffort"));
}

TEST(CostStore, startsAfreshWithACacheItCannotUse) {
    const CostHome home;
    home.write("a", usageRecord("1", 5));
    home.store()->refresh(home.now, true);
    const std::string good = home.cacheText();
    const auto changed = [&](std::string_view what, std::string_view with) {
        std::string text = good;
        text.replace(text.find(what), what.size(), with);
        return text;
    };
    std::vector<std::string> texts{"",
                                   "{}",
                                   "[]",
                                   "null",
                                   "no JSON",
                                   R"({"version":1})",
                                   changed(R"("version":1)", R"("version":2)"),
                                   changed(R"("version":1)", R"("version":"1")"),
                                   changed(R"("output":5)", R"("output":"5")"),
                                   changed(R"("output":5)", R"("output":1e40)"),
                                   changed(R"("size":)", R"("size":-)"),
                                   changed("Etc/UTC", "Europe/Berlin")};
    for (std::size_t length = 1; length < good.size(); length += 7)
        texts.push_back(good.substr(0, length));
    for (const std::string& text : texts) {
        home.folder.write("cost-index.json", text);
        const auto store = home.store(1);
        ASSERT_EQ(store->refresh(home.now, true).filesRead, 1U) << text;
        ASSERT_EQ(outputOf(*store, "a"), 5) << text;
    }
    const std::string sessionGone = R"({"files":{")" + home.folder.at("projects/work/a.jsonl") +
                                    R"(":{"modified":0,"sessionId":"a","size":1}},"sessions":{},)"
                                    R"("version":1,"zone":"Etc/UTC"})";
    home.folder.write("cost-index.json", sessionGone);
    EXPECT_EQ(home.store()->refresh(home.now, true).filesRead, 1U);
}

TEST(CostStore, readsCodexWhereWantedAndRecent) {
    CostHome home;
    const std::string meta = R"({"type":"session_meta","payload":{"id":"thread"}})"
                             "\n";
    home.folder.write("codex/sessions/2026/11/rollout-a.jsonl", meta + tokenCount(10, 2, 3));
    const std::string old =
        home.folder.write("codex/sessions/rollout-old.jsonl", tokenCount(10, 2, 3));
    setModificationDate(old, home.now - CostStore::codexHistory - Seconds(1));
    const auto store = home.store();
    EXPECT_EQ(store->refresh(home.now, false).filesRead, 0U);
    EXPECT_EQ(store->refresh(home.now, true).filesRead, 1U);
    EXPECT_EQ(store->session("thread")->tally().input, 8);
    EXPECT_EQ(store->session("thread")->agent, SessionAgent("codex"));
    EXPECT_FALSE(store->refresh(home.now, false).hasChanged) << "unwanted is not gone";
}

std::int64_t outputUsed(const ModelTallies& used) {
    std::int64_t sum = 0;
    for (const auto& [model, tally] : used)
        sum += tally.output;
    return sum;
}

TEST(CostStore, countsWhatForksCopiedOnceInEveryCompany) {
    const CostHome home;
    const auto requests = [](const char* names) {
        std::string text;
        for (; *names != 0; ++names)
            text += usageRecord({names, 1}, 1 << (*names - 'a'));
        return text;
    };
    home.write("parent", requests("abcd"));
    home.write("fork", requests("abef"));
    home.write("forkOfFork", requests("abeg"));
    home.write("fresh", requests("abcd"));
    home.write("other", requests("h"));
    const auto store = home.store();
    store->refresh(home.now, true);
    const std::map<std::string, std::string> files{{"parent", "abcd"},
                                                   {"fork", "abef"},
                                                   {"forkOfFork", "abeg"},
                                                   {"fresh", "abcd"},
                                                   {"other", "h"}};
    const std::vector<std::string> ids = idsOf(*store->sessions());
    // Every output is a bit of its own: a sum tells which requests are in it.
    for (unsigned chosen = 0; chosen < 1U << ids.size(); ++chosen) {
        std::vector<std::string> company;
        std::int64_t expected = 0;
        for (std::size_t index = 0; index < ids.size(); ++index) {
            if ((chosen & (1U << index)) == 0) continue;
            company.push_back(ids[index]);
            for (const char name : files.at(ids[index]))
                expected |= 1 << (name - 'a');
        }
        do {
            ASSERT_EQ(total(*store->sessions(), company).output, expected) << chosen;
            for (const char* first : {"", "2026-11-21"}) {
                ASSERT_EQ(outputUsed(CostSum(store->sessions()).used(company, first)), expected);
            }
        } while (std::ranges::next_permutation(company).found);
    }
    const auto day = CostSum(store->sessions()).ofDay("2026-11-21", Prices::Book::builtIn());
    EXPECT_EQ(day.tally.output, 255);
    EXPECT_EQ(outputUsed(CostSum(store->sessions()).used("2026-11-21")), 255);
    EXPECT_EQ(outputUsed(CostSum(store->sessions()).used("2026-11-22")), 0);
}

TEST(CostStore, growsAsItWouldStartAfresh) {
    const CostHome home;
    std::mt19937 random(11);
    std::vector<std::string> names{"s0", "s1"};
    int request = 0;
    std::map<std::string, std::string> texts{{"s0", ""}, {"s1", ""}};
    auto store = home.store();
    for (int step = 0; step < 60; ++step) {
        const std::string chosen = names[random() % names.size()];
        if (names.size() < 12 && random() % 4 == 0) {
            const std::string fork = "s" + std::to_string(names.size());
            const std::string& parent = texts[chosen];
            std::size_t lines = random() % 4 + 1;
            std::size_t end = 0;
            while (lines-- > 0 && end < parent.size())
                end = parent.find('\n', end) + 1;
            texts[fork] = parent.substr(0, end);
            names.push_back(fork);
            home.write(fork, texts[fork]);
        } else {
            ++request;
            texts[chosen] += usageRecord(std::to_string(request), request);
            home.write(chosen, texts[chosen]);
        }
        if (random() % 5 == 0) store = home.store();
        if (random() % 7 == 0) {
            // Written anew, as another branch of the same past.
            std::string& text = texts[names[random() % names.size()]];
            text =
                text.substr(0, text.find('\n') + 1) + usageRecord(fmt::format("n{}", step), step);
            for (const std::string& name : names)
                home.write(name, texts[name]);
        }
        store->refresh(home.now, true);
        const SessionCosts expected = home.fresh();
        ASSERT_EQ(tallies(*store->sessions()), tallies(expected)) << step;
        ASSERT_EQ(total(*store->sessions(), idsOf(expected)), total(expected, idsOf(expected)))
            << step;
        std::set<std::string> all;
        for (const auto& [name, text] : texts) {
            for (std::size_t at = 0; at < text.size(); at = text.find('\n', at) + 1)
                all.insert(text.substr(at, text.find('\n', at) - at));
        }
        ASSERT_EQ(sumOf(expected).of(idsOf(expected), Prices::Book::builtIn()).requests,
                  std::ssize(all))
            << step;
    }
}

TEST(CostStore, agreesWithTheBooksOfAGeneratedHome) {
    const CostHome home;
    generator::Plan plan;
    plan.sessions = 24;
    plan.live = 8;
    plan.megabytes = 6;
    plan.forkedSessions = 9;
    plan.rollouts = 5;
    plan.now = home.now;
    const auto books = generator::generate(plan, home.folder.at("home"));
    ASSERT_TRUE(books);
    CostStore store({home.folder.at("home/.claude/projects"), home.folder.at("home/.codex"),
                     home.places().cacheFile},
                    utc);
    store.refresh(home.now, true);
    const auto tallyOf = [](const generator::Usage& usage) {
        return TokenTally{.input = usage.input,
                          .output = usage.output,
                          .thinking = usage.thinking,
                          .cacheRead = usage.cacheRead,
                          .cacheWrite5m = usage.cacheWrite5m,
                          .cacheWrite1h = usage.cacheWrite1h};
    };
    TokenTally sum;
    std::vector<std::string> ids;
    for (const auto& book : books->sessions) {
        std::map<std::string, generator::Usage> expected = book.usageByModel;
        for (const auto& [model, usage] : book.subagentUsageByModel)
            expected[model] += usage;
        const auto session = store.session(book.id);
        ASSERT_TRUE(session) << book.id;
        ASSERT_EQ(session->usage.byModel.size(), expected.size());
        for (const auto& [model, usage] : expected) {
            EXPECT_EQ(session->usage.byModel.at(model).tally, tallyOf(usage)) << book.id;
            EXPECT_EQ(session->usage.byModel.at(model).requests, usage.requests) << book.id;
            sum += tallyOf(usage);
        }
        for (const auto& [model, usage] : book.inheritedUsageByModel)
            sum = sum - tallyOf(usage);
        EXPECT_NEAR(session->billedUSD.value(), book.billedUSD, 1e-9);
        ids.push_back(book.id);
    }
    EXPECT_EQ(total(*store.sessions(), ids), sum);
    for (const auto& book : books->rollouts) {
        const auto session = store.session(book.id);
        ASSERT_TRUE(session) << book.id;
        EXPECT_EQ(session->tally(), (TokenTally{.input = book.inputTokens - book.cachedInputTokens,
                                                .output = book.outputTokens,
                                                .thinking = book.reasoningTokens,
                                                .cacheRead = book.cachedInputTokens,
                                                .cacheWriteUnknown = book.cacheWriteTokens}));
    }
}

TEST(CostStore, addsUpWhatRecordedAgentsBilled) {
    const TemporaryDirectory folder;
    CostStore store({dataPath("costs/projects"), folder.at("codex"), folder.at("index")}, utc, 1);
    store.refresh(currentDate(), true);
    const auto sessions = store.sessions();
    EXPECT_EQ(sessions->size(), 3U);
    for (const auto& [id, session] : *sessions) {
        for (const BilledSlice& billed : session->billedModels) {
            const TokenTally& tally = session->usage.byModel.at(billed.model).tally;
            EXPECT_EQ(tally.input, billed.input) << id;
            EXPECT_EQ(tally.output, billed.output) << id;
            EXPECT_EQ(tally.cacheRead, billed.cacheRead) << id;
            EXPECT_EQ(tally.cacheWrites(), billed.cacheCreation) << id;
        }
    }
    const Prices::Book& book = Prices::Book::builtIn();
    EXPECT_EQ(store.session("b1a58e86-b89d-4a2d-bde3-d05e2d4c2216")->priceVerdict(book),
              (Prices::Verdict{Prices::Verdict::Kind::unknownModel, "claude-sonnet-5-5"}));
    // The recorded agent bills less for Opus than the built-in book.
    const auto verdict = store.session("479ef02b-69f8-4b10-a1a6-f6a93e7e9528")->priceVerdict(book);
    EXPECT_EQ(verdict->kind, Prices::Verdict::Kind::outdated);
    EXPECT_NEAR(verdict->deviation, (0.01941 - 0.022392) / 0.022392, 1e-9);
}

TEST(CostStore, stopsWhenTold) {
    const CostHome home;
    home.write("a", usageRecord("1", 1));
    const auto store = home.store();
    store->stop();
    EXPECT_FALSE(store->refresh(home.now, true).hasRun);
    EXPECT_FALSE(std::filesystem::exists(home.places().cacheFile));
}

TEST(CostStore, isRightAfterAKillAtAnyMoment) {
    const CostHome home;
    for (int session = 0; session < 40; ++session) {
        std::string text;
        for (int request = 0; request < 150; ++request)
            text +=
                usageRecord(fmt::format("{}-{}", session % 30, request), request + session % 30);
        home.write("s" + std::to_string(session), text);
    }
    const SessionCosts expected = home.fresh();
    std::mt19937 random(5);
    for (int round = 0; round < 100; ++round) {
        if (round % 10 == 0) std::filesystem::remove(home.places().cacheFile);
        const pid_t child = ::fork();
        if (child == 0) {
            for (;;) {
                home.store(1)->refresh(home.now, true);
                home.folder.append("projects/work/s0.jsonl", "\n");
            }
        }
        ASSERT_GT(child, 0);
        std::this_thread::sleep_for(std::chrono::microseconds(random() % 20'000));
        ::kill(child, SIGKILL);
        ::waitpid(child, nullptr, 0);
        const auto store = home.store(1);
        store->refresh(home.now, true);
        ASSERT_EQ(tallies(*store->sessions()), tallies(expected)) << round;
        ASSERT_EQ(total(*store->sessions(), idsOf(expected)), total(expected, idsOf(expected)));
    }
    home.store(1)->refresh(home.now + Seconds(7200), true);
    for (const auto& entry : std::filesystem::directory_iterator(home.folder.path()))
        EXPECT_FALSE(entry.path().filename().string().starts_with("cost-index.json."));
}

}  // namespace
}  // namespace fleetwise::testing
