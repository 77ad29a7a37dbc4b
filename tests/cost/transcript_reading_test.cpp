#include "cost/transcript_reading.h"

#include "cost/transcript_samples.h"

#include <gmock/gmock.h>

#include <limits>

namespace fleetwise::testing {
namespace {

using ::testing::Optional;

TEST(TranscriptReading, tellsRecordedTranscripts) {
    const Date never;
    const auto at = [](const char* text) { return parseInternetDate(text).value(); };
    const struct {
        const char* name;
        std::int64_t turns, tools, context, output;
        std::optional<std::string> lastReply;
        Date lastReplyAt;
        std::optional<std::string> origin;
    } rows[] = {
        {"background", 3, 1, 18329, 363, "The background command finished.",
         at("2026-11-21T02:05:38.380Z"), "task-notification"},
        {"compact", 2, 0, 16307, 240, "Second plain mock answer.", at("2026-11-21T02:06:06.380Z"),
         "human"},
        {"interrupted", 1, 1, 16307, 120, std::nullopt, never, "human"},
        {"loop", 3, 1, 16307, 361, "Second plain mock answer.", at("2026-11-21T02:07:00.717Z"),
         "human"},
        {"max_tokens", 5, 0, 19340, 486,
         "API Error: Claude's response exceeded the 128000 output token maximum. To configure this "
         "behavior, set the CLAUDE_CODE_MAX_OUTPUT_TOKENS environment variable.",
         at("2026-11-21T02:04:31.861Z"), std::nullopt},
        {"resumed", 2, 0, 16307, 240, "Second plain mock answer.", at("2026-11-21T02:07:11.949Z"),
         "human"},
        {"titles", 4, 1, 16307, 481, "Second plain mock answer.", at("2026-11-21T02:07:50.237Z"),
         "human"},
    };
    ASSERT_EQ(std::size(rows), std::size(recordedTranscripts));
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const TranscriptReading reading = readText(recorded(row.name));
        EXPECT_EQ(reading.stats.assistantTurns, row.turns);
        EXPECT_EQ(reading.stats.toolCalls, row.tools);
        EXPECT_EQ(reading.stats.contextTokens, row.context);
        EXPECT_EQ(reading.stats.outputTokens, row.output);
        EXPECT_EQ(reading.stats.lastReply, row.lastReply);
        EXPECT_EQ(reading.stats.lastReplyAt.value_or(never), row.lastReplyAt);
        EXPECT_EQ(reading.stats.lastTurnOrigin, row.origin);
        EXPECT_EQ(reading.stats.cwd, "/home/dev/work/demo");
        EXPECT_EQ(reading.effort, "medium");
    }
}

TEST(TranscriptReading, tellsWhoStartedTheLastTurn) {
    const std::string human = prompt("a", R"(,"origin":{"kind":"human"})");
    const struct {
        const char* name;
        std::string lines;
        std::optional<std::string> origin;
    } rows[] = {
        {"no origin leaves it", human + prompt("b"), "human"},
        {"body without kind", human + prompt("b", R"(,"origin":{"body":{"x":[1]}})"), "peer"},
        {"kind of another type", human + prompt("b", R"(,"origin":{"kind":7,"body":""})"), "peer"},
        {"body before kind", prompt("b", R"(,"origin":{"body":"","kind":"human"})"), "human"},
        {"neither", human + prompt("b", R"(,"origin":{})"), std::nullopt},
        {"no object", human + prompt("b", R"(,"origin":"peer")"), "human"},
        {"not a user record",
         human + R"({"type":"system","origin":{"kind":"x"}})"
                 "\n",
         "human"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(readText(row.lines).stats.lastTurnOrigin, row.origin);
    }
}

TEST(TranscriptReading, keepsTheLatestContextAndSumsTheRest) {
    const auto stats = readText(reply("one", 5, 100) + reply("  ", 6, 50)).stats;
    EXPECT_EQ(stats.assistantTurns, 2);
    EXPECT_EQ(stats.contextTokens, 50);
    EXPECT_EQ(stats.outputTokens, 11);
    EXPECT_EQ(stats.lastReply, "one");

    const std::string notice =
        R"({"type":"assistant","message":{"model":"<synthetic>","content":[{"type":"text",)"
        R"("text":"API Error: 529"}],"usage":{"input_tokens":0,"output_tokens":0}}})"
        "\n";
    const auto failed = readText(reply("one", 5, 100) + notice).stats;
    EXPECT_EQ(failed.assistantTurns, 2);
    EXPECT_EQ(failed.contextTokens, 100);
    EXPECT_EQ(failed.model, stats.model);
    EXPECT_EQ(failed.lastReply, "API Error: 529");

    const std::string huge =
        R"({"type":"assistant","message":{"usage":{"input_tokens":9223372036854775807,)"
        R"("cache_read_input_tokens":9223372036854775807,"cache_creation_input_tokens":1,)"
        R"("output_tokens":9223372036854775807,)"
        R"("output_tokens_details":{"thinking_tokens":-9223372036854775807}}}})"
        "\n";
    const auto saturated = readText(huge + huge).stats;
    EXPECT_EQ(saturated.contextTokens, std::numeric_limits<std::int64_t>::max());
    EXPECT_EQ(saturated.outputTokens, std::numeric_limits<std::int64_t>::max());
    EXPECT_EQ(saturated.thinkingTokens, std::numeric_limits<std::int64_t>::min());
}

TEST(TranscriptReading, passesOverWhatIsNoRecord) {
    const std::string before = prompt("a") + reply("kept", 3, 7);
    const TranscriptReading expected = readText(before);
    const struct {
        const char* name;
        std::string line;
    } rows[] = {
        {"empty", ""},
        {"no JSON", "garbage"},
        {"an array", "[" + reply("x").substr(0, 20) + "]"},
        {"torn", reply("x").substr(0, reply("x").size() - 3)},
        {"two objects", R"({"type":"assistant","message":{}} {"a":1})"},
        {"missing comma", R"({"type":"assistant","message":{"content":[1 2]}})"},
        {"not UTF-8", "{\"type\":\"assistant\",\"message\":{\"model\":\"\xFF\"}}"},
        {"deep", R"({"type":"assistant","message":)" + std::string(100'000, '[')},
        {"message is a text", R"({"type":"assistant","message":"x"})"},
        {"type is a number", R"({"type":1,"message":{}})"},
        {"no type", R"({"message":{"model":"x"}})"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(readText(row.line + "\n", expected), expected);
        EXPECT_EQ(readText(row.line + "\n" + before), expected) << "what follows is read";
    }
}

TEST(TranscriptReading, survivesACutAtEveryByte) {
    const std::string contents = recorded("interrupted");
    const TranscriptReading whole = readText(contents);
    for (std::size_t cut = 1; cut < contents.size(); ++cut) {
        const std::string head = contents.substr(0, cut);
        const TranscriptReading soFar = readText(head);
        const std::string rest = contents.substr(head.rfind('\n') + 1);
        ASSERT_EQ(readText(rest, soFar), whole) << cut;
        if (contents[cut] == '\n') continue;
        ASSERT_EQ(readText(head + "\n"), soFar) << "a torn line tells nothing, cut at " << cut;
    }
}

TEST(TranscriptReading, takesMembersOfOtherTypesAsAbsent) {
    const auto stats =
        readText(
            R"({"type":"assistant","cwd":5,"timestamp":[],"effort":{},"message":{"model":null,)"
            R"("content":[7,null,[],{"type":3},{"type":"tool_use","input":{"text":"no"}},)"
            R"({"text":"a","type":"text"},{"type":"text","text":"b"},{"type":"text","text":1},)"
            R"({"type":"text","text":"half a pair \ud83d"}],)"
            R"("usage":{"input_tokens":"1","cache_read_input_tokens":2.0,"output_tokens":1.5,)"
            R"("output_tokens_details":[1]}}})"
            "\n")
            .stats;
    EXPECT_EQ(stats, (TranscriptStats{.assistantTurns = 1,
                                      .toolCalls = 1,
                                      .contextTokens = 2,
                                      .cwd = {},
                                      .model = {},
                                      .lastReply = "a\nb\nhalf a pair \uFFFD",
                                      .lastReplyAt = {},
                                      .lastTurnOrigin = {}}));
}

TEST(TranscriptReading, tellsHowTasksEnded) {
    const auto notification = [](const char* id, const char* status, const char* summary) {
        return prompt(
            std::string(R"(<task-notification>\n<task-id>)") + id + R"(</task-id>\n<status>)" +
                status + R"(</status>\n<summary>)" + summary +
                R"(</summary>\n<result>)"
                "<!-- fleetwise:verbund=no -->"
                "</result>",
            R"(,"timestamp":"2026-11-21T02:00:00Z","origin":{"kind":"task-notification"})");
    };
    const auto reading = readText(
        notification("zero", "completed", R"(Background command \"x\" completed (exit code 0))") +
        notification("three", "completed", R"(Command \"exit code 0\" completed (exit code 3))") +
        notification("agent", "completed", R"(Agent \"exit code 9\" finished)") +
        notification("failed", "failed", R"(Command \"x\" failed with exit code 143)") +
        notification("killed", "killed", "") + notification("event", "running", "") +
        notification("", "completed", "") + notification("again", "failed", "") +
        R"({"type":"queue-operation","content":"<task-notification><task-id>again</task-id>)"
        R"(<status>completed</status>","timestamp":"2026-11-21T02:00:00Z"})"
        "\n" +
        prompt("<task-notification><task-id>meta</task-id><status>failed</status>",
               R"(,"isMeta":true)"));
    using enum TaskEnding::Outcome;
    const auto at = parseInternetDate("2026-11-21T02:00:00Z");
    EXPECT_EQ(reading.taskEndings, (std::map<std::string, TaskEnding>{
                                       {"zero", {completed, 0, at}},
                                       {"three", {failed, 3, at}},
                                       {"agent", {completed, {}, at}},
                                       {"failed", {failed, 143, at}},
                                       {"killed", {failed, {}, at}},
                                       {"again", {completed, {}, at}},
                                   }));
    EXPECT_FALSE(reading.federationId) << "what a notification quotes is no prompt";
    EXPECT_EQ(readText(recorded("background")).taskEndings.at("b2xnztr8e"),
              (TaskEnding{completed, 0, parseInternetDate("2026-11-21T02:05:38.219Z")}));
}

TEST(TranscriptReading, findsTheLastFederationMarkOfAPrompt) {
    const std::string mark = "<!-- fleetwise:verbund= one --> <!-- fleetwise:verbund=two-->";
    const struct {
        const char* name;
        std::string line;
        std::optional<std::string> id;
    } rows[] = {
        {"text", prompt("go " + mark), "two"},
        {"blank and open marks do not count",
         prompt(mark + "<!-- fleetwise:verbund= --><!-- fleetwise:verbund=x"), "two"},
        {"queued", R"({"type":"queue-operation","content":")" + mark + "\"}\n", "two"},
        {"text item",
         R"({"type":"user","message":{"content":[{"type":"text","text":")" + mark + "\"}]}}\n",
         "two"},
        {"tool result",
         R"({"type":"user","message":{"content":[{"type":"tool_result","content":")" + mark +
             R"("}]},"toolUseResult":")" + mark + "\"}\n",
         std::nullopt},
        {"subagent's prompt", prompt(mark, R"(,"isSidechain":true)"), std::nullopt},
        {"reply", reply(mark), std::nullopt},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(readText(row.line).federationId, row.id);
    }
}

}  // namespace
}  // namespace fleetwise::testing
