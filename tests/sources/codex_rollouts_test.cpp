#include "sources/codex_rollouts.h"

#include "foundation/regular_file.h"
#include "support/temporary_directory.h"

#include <fmt/format.h>
#include <gmock/gmock.h>

#include <filesystem>
#include <limits>
#include <map>

namespace fleetwise::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::UnorderedElementsAre;
using State = SessionState;

constexpr std::size_t megabyte = 1'000'000;
const std::string name = "sessions/2026/11/21/rollout-plain.jsonl";

std::string line(std::string_view type, std::string_view payload, int second = 0) {
    return fmt::format(
        "{{\"timestamp\":\"2026-11-21T02:00:{:02}.000Z\",\"type\":\"{}\",\"payload\":{}}}\n",
        second, type, payload);
}

std::string meta(std::string_view members = R"("id":"plain")") {
    return line("session_meta", fmt::format("{{{}}}", members));
}

/// An event of this type with further members.
std::string event(std::string_view type, std::string_view members = R"("n":1)", int second = 0) {
    return line("event_msg", fmt::format(R"({{"type":"{}",{}}})", type, members), second);
}

/// A line of about `bytes`.
std::string filler(std::size_t bytes) {
    return line("response_item", fmt::format(R"({{"text":"{}"}})", std::string(bytes, 'x')));
}

bool everything(const FoundFile&) {
    return true;
}

struct Load {
    CodexRollouts::Listing listing;
    SkipTally skipped;
    ReadCounts read;
};

Load load(CodexRollouts& rollouts, const std::string& folder,
          const CodexRollouts::Wish& isWished = everything) {
    Load load;
    const ReadCounts before = readCounts();
    load.listing = rollouts.load(folder, isWished, load.skipped);
    const ReadCounts after = readCounts();
    load.read = {.opens = after.opens - before.opens, .bytes = after.bytes - before.bytes};
    return load;
}

std::vector<CodexRollout> fresh(const std::string& folder) {
    CodexRollouts rollouts;
    return load(rollouts, folder).listing.rollouts;
}

/// State, prompt, last reply and failure.
std::string summary(const CodexRollout& rollout) {
    return fmt::format("{}: {}/{}/{}", rawValue(rollout.state), rollout.firstPrompt.value_or("-"),
                       rollout.lastReply.value_or("-"), rollout.failure.value_or("-"));
}

TEST(CodexRollouts, tellWhatTheAgentRecorded) {
    const struct {
        std::string name;
        const char* id;
        std::int64_t contextTokens;
        std::int64_t outputTokens;
        const char* summary;
    } rows[] = {
        {"plain", "01a1fbd8-98b9-7ae0-84bb-fe135ff7ce30", 9210, 210,
         "done: %%play plain/Plain codex answer./-"},
        {"approved", "01a1fbd9-b731-7882-b016-95d386723bf8", 9711, 421,
         "done: %%play escalate/Made it./-"},
        {"failed", "01a1fbd8-bebf-7381-9ca2-92e2cb0fbcf2", 0, 0,
         "failed: %%play err500/-/We’re currently experiencing high demand, which may cause "
         "temporary errors."},
        {"without-figures", "01a1fbd8-d59e-75a2-b7f1-6d1a9192ca6f", 0, 0,
         "failed: %%play errdropall/-/stream disconnected before completion: stream closed before "
         "response.completed"},
        {"goal-aborted", "01a1fbda-c7d5-7102-9225-974645fd5fc6", 9210, 11550,
         "idle: -/Mock codex answer (None, step 0)./-"},
        {"killed", "01a1fbda-fb21-7512-9109-aaeb510c9f82", 9210, 210,
         "working: %%play longshell/-/-"},
    };
    std::map<std::string, CodexRollout> rollouts;
    for (const CodexRollout& rollout : fresh(dataPath("rollouts")))
        rollouts.emplace(rollout.fileName, rollout);
    EXPECT_EQ(rollouts.size(), std::size(rows));
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const CodexRollout& rollout = rollouts["rollout-" + row.name + ".jsonl"];
        EXPECT_EQ(rollout.sessionId, row.id);
        EXPECT_EQ(rollout.contextTokens, row.contextTokens);
        EXPECT_EQ(rollout.outputTokens, row.outputTokens);
        EXPECT_EQ(summary(rollout), row.summary);
        EXPECT_EQ(rollout.contextWindow, 258'400);
        EXPECT_EQ(rollout.model, "gpt-6-sol");
        EXPECT_LT(rollout.startedAt, rollout.turnStartedAt);
        EXPECT_LE(rollout.stateSince, rollout.lastEventAt);
    }
}

TEST(RolloutTail, believesTheLastTaskEvent) {
    const std::string started = event("task_started");
    const std::string failed = event("error", R"("message":"broken")");
    const std::string hostile = std::string(100, '\0') + "\n" + std::string(100'000, '[') + "\n" +
                                "\xff\xfe\nnull\n}{\n\"\n" +
                                R"({"type":"event_msg","payload":null}
{"type":"event_msg","payload":[{"type":"turn_aborted"}]}
{"type":"event_msg","payload":{"type":"turn_aborted"}}{}
{"type":"event_msg","payload":{"type":"turn_aborted","n":1e999}}
)";
    const std::string done = event("task_complete");
    const struct {
        std::string text;
        std::optional<State> state;
        std::optional<std::string> failure;
    } rows[] = {
        {failed + started, State::working, {}},
        {started + failed, State::failed, "broken"},
        {event("stream_error", R"("message":"cut")"), State::failed, "cut"},
        {failed + done, State::done, {}},
        {event("task_complete", R"("error":{"message":"quota"})"), State::failed, "quota"},
        {event("task_complete", R"("error":{})"), State::failed, {}},
        {event("task_complete", R"("error":"boom")"), State::failed, "boom"},
        {event("task_complete", R"("error":null)"), State::done, {}},
        {failed + event("turn_aborted"), State::idle, {}},
        {started + line("response_item", R"({"type":"turn_aborted"})"), State::working, {}},
        {started + hostile, State::working, {}},
        {event("token_count", R"("info":null)"), {}, {}},
    };
    for (const auto& row : rows) {
        const RolloutTail tail = RolloutTail::parse(padded(row.text));
        EXPECT_EQ(tail.state, row.state) << row.text;
        EXPECT_EQ(tail.failure, row.failure) << row.text;
    }
}

TEST(RolloutTail, believesNoImpossibleFigures) {
    const std::pair<const char*, std::int64_t> rows[] = {
        {R"({"input_tokens":1,"output_tokens":2,"total_tokens":9})", 9},
        {R"({"input_tokens":1,"output_tokens":2})", 3},
        {R"({"input_tokens":9223372036854775807,"output_tokens":2})",
         std::numeric_limits<std::int64_t>::max()},
        {R"({"input_tokens":-5,"output_tokens":2,"total_tokens":-9})", 2},
        {R"({"total_tokens":1e300,"input_tokens":18446744073709551615,"output_tokens":"9"})", 0},
        {"null", 210},
    };
    const std::string before =
        event("token_count",
              R"("info":{"last_token_usage":{"total_tokens":210},"model_context_window":100})");
    for (const auto& [last, contextTokens] : rows) {
        const std::string members =
            fmt::format(R"("info":{{"model_context_window":-1,"last_token_usage":{}}})", last);
        const RolloutTail tail = RolloutTail::parse(padded(before + event("token_count", members) +
                                                           event("token_count", R"("info":null)")));
        EXPECT_EQ(tail.contextTokens, contextTokens) << last;
        EXPECT_EQ(tail.contextWindow, 100) << last;
    }
}

TEST(RolloutHead, tellsWhoseARolloutIs) {
    const std::string tooLong(3'000, 'x');
    const struct {
        std::string members;
        const char* expected;  ///< id, what it is, parent
    } rows[] = {
        {R"("id":"a","session_id":"a")", "a session -"},
        {R"("session_id":"a")", "a session -"},
        {R"("id":7,"session_id":"")", "- session -"},
        {R"("id":"../a","session_id":"b")", "b session -"},
        {R"("session_id":")" + tooLong + '"', "- session -"},
        {R"("id":"a","session_id":"p")", "a subagent p"},
        {R"("id":"a","source":{"subagent":{"thread_spawn":{"depth":1,"parent_thread_id":"p"}}})",
         "a subagent p"},
        {R"("id":"a","source":{"subagent":"review"})", "a subagent -"},
        {R"("id":"a","thread_source":"subagent")", "a subagent -"},
        {R"("id":"a","parent_thread_id":"p","forked_from_id":"f")", "a subagent p"},
        {R"("id":"a","forked_from_id":"f","source":"cli")", "a fork f"},
        {R"("id":"a","forked_from_id":"a")", "a fork -"},
        {R"("id":"a","source":{"subagents":1},"forked_from_id":["f"])", "a session -"},
    };
    const char* kinds[] = {"session", "fork", "subagent"};
    for (const auto& row : rows) {
        const auto head = RolloutHead::parse(
            padded(meta(row.members) + meta(R"("id":"copied","forked_from_id":"x")")));
        ASSERT_TRUE(head) << row.members;
        EXPECT_EQ(fmt::format("{} {} {}", head->sessionId.value_or("-"),
                              kinds[static_cast<int>(head->kind)], head->parentId.value_or("-")),
                  row.expected)
            << row.members;
    }
}

TEST(CodexRollouts, tellNoMoreThanTheWholeLinesSay) {
    const struct {
        std::string text;
        State state;
    } lines[] = {
        {meta(), State::idle},
        {event("task_started", R"("model_context_window":100)", 1), State::working},
        {line("turn_context", R"({"model":"m","effort":"high"})"), State::working},
        {event("user_message", R"("message":"Hallo")", 2), State::working},
        {event("task_complete", R"("last_agent_message":"ja")", 3), State::done},
        {event("task_started", R"("n":"ü")", 4), State::working},
        {event("task_complete", R"("error":{"message":"quota"})", 5), State::failed},
    };
    std::string whole;
    for (const auto& each : lines)
        whole += each.text;
    const TemporaryDirectory grown;
    const TemporaryDirectory cut;
    CodexRollouts growing;
    State state = State::idle;
    std::size_t written = 0;
    for (const auto& each : lines) {
        for (std::size_t bytes = 1; bytes <= each.text.size(); ++bytes) {
            ++written;
            if (bytes + 1 == each.text.size()) state = each.state;  // all but the newline
            grown.append(name, std::string(1, whole[written - 1]));
            const auto now = load(growing, grown.path()).listing.rollouts;
            ASSERT_EQ(now, fresh(grown.path())) << whole.substr(0, written);
            ASSERT_EQ(now.size(), written + 1 < lines[0].text.size() ? 0U : 1U);
            if (!now.empty()) {
                ASSERT_EQ(now[0].sessionId, "plain");
                ASSERT_EQ(now[0].state, state) << whole.substr(0, written);
            }
            CodexRollouts completed;
            cut.write(name, whole.substr(0, written));
            load(completed, cut.path());
            cut.append(name, whole.substr(written));
            ASSERT_EQ(load(completed, cut.path()).listing.rollouts, fresh(cut.path()));
        }
    }
    EXPECT_EQ(fresh(grown.path())[0].firstPrompt, "Hallo");
}

TEST(CodexRollouts, readOnlyWhatWasAppended) {
    const std::string whole = contentsOf(dataPath("rollouts/sessions/rollout-approved.jsonl"));
    const TemporaryDirectory folder;
    CodexRollouts rollouts;
    bool knowsPrompt = false;
    constexpr std::uint64_t comparedBytes = 2 * 64;
    for (std::size_t begin = 0; begin < whole.size();) {
        const std::size_t end = whole.find('\n', begin) + 1;
        folder.append(name, whole.substr(begin, end - begin));
        const Load now = load(rollouts, folder.path());
        ASSERT_EQ(now.listing.rollouts, fresh(folder.path()));
        EXPECT_EQ(now.read.opens, 1U);
        EXPECT_TRUE(!knowsPrompt || now.read.bytes <= end - begin + comparedBytes);
        knowsPrompt = now.listing.rollouts.at(0).firstPrompt.has_value();
        begin = end;
        EXPECT_EQ(load(rollouts, folder.path()).read.opens, 0U) << "unchanged";
    }
    EXPECT_TRUE(knowsPrompt);
}

TEST(CodexRollouts, findThePromptBehindALongMetaLine) {
    const TemporaryDirectory folder;
    folder.write(name, meta(R"("id":"plain","text":")" + std::string(70'000, 'x') + '"'));
    CodexRollouts rollouts;
    load(rollouts, folder.path());
    folder.append(name, event("task_started"));
    load(rollouts, folder.path());
    folder.append(name, event("user_message", R"("message":"Hallo")"));
    EXPECT_EQ(load(rollouts, folder.path()).listing.rollouts.at(0).firstPrompt, "Hallo");
}

TEST(CodexRollouts, readAnewWhatWasCutOrReplaced) {
    const TemporaryDirectory folder;
    const std::string first = meta() + event("task_started") + event("error");
    folder.write(name, first);
    CodexRollouts rollouts;
    load(rollouts, folder.path());
    folder.write(name, first.substr(0, first.size() / 2));
    EXPECT_EQ(load(rollouts, folder.path()).listing.rollouts, fresh(folder.path()));
    for (const std::string id : {"x", "longer"}) {
        folder.write(name, meta("\"id\":\"" + id + '"') + event("turn_aborted") + first);
        EXPECT_EQ(load(rollouts, folder.path()).listing.rollouts, fresh(folder.path())) << id;
    }
    const std::string other = folder.write("other", meta(R"("id":"other")") + first);
    std::filesystem::rename(other, folder.at(name));
    const auto replaced = load(rollouts, folder.path()).listing.rollouts;
    EXPECT_EQ(replaced, fresh(folder.path()));
    EXPECT_EQ(replaced.at(0).sessionId, "other");
}

TEST(CodexRollouts, readNoMoreThanTheyNeed) {
    constexpr std::uint64_t head = RolloutHead::window;
    constexpr std::uint64_t tail = RolloutTail::window;
    constexpr std::uint64_t longestTail = RolloutTail::longestSearch + tail;
    const std::string task = event("task_started");
    const std::string giant = filler(megabyte);
    std::string history;
    for (int count = 0; count < 6; ++count)
        history += giant;
    const auto longMeta = [](std::size_t bytes) {
        return meta(R"("id":"plain","base_instructions":")" + std::string(bytes, 'x') + '"');
    };
    const struct {
        const char* name;
        std::string text;
        std::optional<State> state;
        std::uint64_t bytes;
    } rows[] = {
        {"6 MB before it", meta() + history + task + filler(100'000), State::working, head + tail},
        {"6 MB after it", meta() + task + history, State::idle, head + longestTail},
        {"last line", meta() + task + filler(300'000), State::working, head + 2 * tail},
        {"1 MB after it", meta() + task + giant, State::working, head + 5 * tail},
        {"no line's end", meta() + task + std::string(6 * megabyte, 'x'), State::idle,
         head + longestTail},
        {"long meta line", longMeta(300'000) + task, State::working, 6 * head + tail},
        {"longer one", longMeta(2 * megabyte), {}, RolloutHead::longestWindow + longestTail},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const TemporaryDirectory folder;
        folder.write(name, row.text);
        CodexRollouts rollouts;
        const Load first = load(rollouts, folder.path());
        std::optional<State> state;
        for (const CodexRollout& rollout : first.listing.rollouts)
            state = rollout.state;
        EXPECT_EQ(state, row.state);
        EXPECT_EQ(first.skipped, (SkipTally{.malformed = row.state ? 0U : 1U}));
        EXPECT_EQ(first.read.opens, 1U);
        EXPECT_LE(first.read.bytes, row.bytes + 64) << "and what the next load compares";
        EXPECT_EQ(load(rollouts, folder.path()).read.opens, 0U) << "unchanged";
    }
}

TEST(CodexRollouts, readTheWishedOnesAndTheirForebears) {
    const TemporaryDirectory folder;
    const auto writes = [&](const std::string& id, const std::string& text) {
        folder.write("sessions/rollout-" + id + ".jsonl", text);
    };
    writes("grandparent", meta(R"("id":"grandparent")"));
    writes("parent", meta(R"("id":"parent","forked_from_id":"grandparent")"));
    writes("wished", meta(R"("id":"wished","parent_thread_id":"parent")"));
    writes("other", meta(R"("id":"other","forked_from_id":"wished")"));
    folder.write("sessions/rollout-packed.jsonl.zst", meta());
    CodexRollouts rollouts;
    for (const std::uint64_t opens : {3U, 0U}) {
        const Load now = load(rollouts, folder.path(), [](const FoundFile& file) {
            return file.name == "rollout-wished.jsonl";
        });
        EXPECT_EQ(now.read.opens, opens);
        EXPECT_EQ(now.listing.rollouts.size(), 3U);
        EXPECT_EQ(now.listing.compressed, 1U);
        EXPECT_THAT(now.listing.otherIds,
                    UnorderedElementsAre("parent", "wished", "other", "packed"));
    }
}

TEST(CodexRollouts, listASessionOnceAndTheLatestFirst) {
    const std::string id = "01a1fbd8-98b9-7ae0-84bb-fe135ff7ce30";
    const TemporaryDirectory folder;
    folder.write("session_index.jsonl", R"({"id":"twice","thread_name":"Umbau"})");
    const auto writes = [&](const std::string& file, const std::string& text) {
        setModificationDate(folder.write("sessions/" + file, text), dateFromSeconds(0));
    };
    writes("rollout-a.jsonl", meta(R"("id":"twice")") + event("task_started", R"("n":1)", 2));
    writes("b/rollout-a.jsonl", meta(R"("id":"twice")") + event("turn_aborted", R"("n":1)", 3));
    writes("rollout-c.jsonl", meta(R"("id":"latest")") + event("error", R"("n":1)", 9));
    writes("rollout-2026-11-21T02-03-58-" + id + ".jsonl", meta(R"("cwd":"/")"));
    writes("rollout-no-meta.jsonl", event("task_started"));
    writes("rollout-empty.jsonl", "");
    CodexRollouts rollouts;
    const Load now = load(rollouts, folder.path());
    std::vector<std::string> ids;
    for (const CodexRollout& rollout : now.listing.rollouts)
        ids.push_back(rollout.sessionId);
    ASSERT_THAT(ids, ElementsAre("latest", "twice", id));
    EXPECT_EQ(now.listing.rollouts[1].state, State::idle) << "the later of two files";
    EXPECT_EQ(now.listing.rollouts[1].title, "Umbau");
    EXPECT_EQ(now.listing.rollouts[2].lastEventAt, dateFromSeconds(0)) << "the file's date";
    EXPECT_EQ(now.skipped, (SkipTally{.malformed = 1}));
}

}  // namespace
}  // namespace fleetwise::testing
