#include "cost/line_search.h"
#include "cost/rollout_usage_reader.h"
#include "cost/transcript_lines.h"
#include "cost/transcript_usage_reader.h"
#include "support/temporary_directory.h"
#include "support/usage_samples.h"

#include <gmock/gmock.h>

#include <random>

namespace fleetwise::testing {
namespace {

using ::testing::ElementsAre;

const Calendar berlin = ::date::locate_zone("Europe/Berlin");

/// What the lines of `text` that are searched for add up to.
template <typename Reader, std::size_t Count, typename... Rest>
SessionCost readAll(Reader&& reader, const LineMarks<Count>& marks, const std::string& text,
                    std::size_t block, Rest... rest) {
    const MemoryBytes bytes(text);
    const auto done = LineSearch(block).forEachMarkedLine(
        bytes, text.size(), marks,
        [&](std::string_view line) {
            if constexpr (sizeof...(rest) > 0) {
                return reader.add(line, rest...);
            } else {
                reader.add(line);
                return LineSearch::Going::on;
            }
        },
        [](std::size_t) { return LineSearch::Going::on; });
    EXPECT_TRUE(done);
    return reader.finish();
}

SessionCost readTranscript(const std::string& text, std::size_t block = LineSearch::defaultBlock,
                           std::size_t limit = allRequests) {
    return readAll(TranscriptUsageReader(berlin, limit), UsageLine::marks, text, block,
                   TranscriptUsageReader::Writer::session);
}

SessionCost readRollout(const std::string& text) {
    return readAll(RolloutUsageReader(berlin), RolloutUsageReader::marks, text,
                   LineSearch::defaultBlock);
}

TokenTally tallyOf(const std::string& usage) {
    return readTranscript(R"({"type":"assistant","message":{"usage":)" + usage + "}}\n").tally();
}

TEST(TranscriptUsageReader, readsTheUsageOfAReply) {
    struct Case {
        const char* name;
        std::string usage;
        TokenTally tally;
    };
    const Case cases[] = {
        {"all kinds",
         R"({"input_tokens":7,"cache_creation_input_tokens":1300,"cache_read_input_tokens":15000,)"
         R"("output_tokens":120,"output_tokens_details":{"thinking_tokens":45},"cache_creation":)"
         R"({"ephemeral_1h_input_tokens":1000,"ephemeral_5m_input_tokens":300}})",
         {.input = 7,
          .output = 120,
          .thinking = 45,
          .cacheRead = 15000,
          .cacheWrite5m = 300,
          .cacheWrite1h = 1000}},
        {"writes of unstated lifetime are for five minutes",
         R"({"output_tokens":1,"cache_creation_input_tokens":9})",
         {.output = 1, .cacheWrite5m = 9}},
        {"no object of lifetimes",
         R"({"output_tokens":1,"cache_creation":null,"cache_creation_input_tokens":9})",
         {.output = 1, .cacheWrite5m = 9}},
        {"lifetimes stand for themselves, also before the sum",
         R"({"cache_creation":{"ephemeral_5m_input_tokens":2},"cache_creation_input_tokens":9,)"
         R"("output_tokens":1})",
         {.output = 1, .cacheWrite5m = 2}},
        {"numbers that are none", R"({"output_tokens":"12","input_tokens":3.0})", {.input = 3}},
        {"at the limit", R"({"output_tokens":9223372036854775807})", {.output = INT64_MAX}},
    };
    for (const Case& test : cases)
        EXPECT_EQ(tallyOf(test.usage), test.tally) << test.name;
}

TEST(TranscriptUsageReader, countsARequestOnceByItsFirstRecord) {
    const std::string text =
        usageRecord("a", 1) + usageRecord("a", 50) +
        R"({"type":"assistant","message":{"id":"m","usage":{"output_tokens":10}}})"
        "\n"
        R"({"type":"assistant","requestId":"","message":{"id":"m","usage":{"output_tokens":10}}})"
        "\n"
        R"({"type":"assistant","message":{"usage":{"output_tokens":100}}})"
        "\n"
        R"({"type":"assistant","message":{"usage":{"output_tokens":100}}})"
        "\n"
        R"({"type":"assistant","requestId":"b","message":{"text":"\"output_tokens\""}})"
        "\n"
        R"({"type":"user","requestId":"c","message":{"usage":{"output_tokens":1000}}})"
        "\n"
        R"({"type":"assistant","requestId":"d","message":{"usage":{"output_tokens":1000})";
    const SessionCost read = readTranscript(text);
    EXPECT_EQ(read.tally().output, 211);
    EXPECT_EQ(read.requests(), 4);
    EXPECT_EQ(read.family, "a");
}

TEST(TranscriptUsageReader, tellsModelsEffortsDaysAndTheLatest) {
    const std::string haiku =
        R"({"type":"assistant","requestId":"3","effort":"high","timestamp":)"
        R"("2026-11-21T22:59:59.999Z","message":{"model":"claude-haiku-4-5","usage":)"
        R"({"output_tokens":4}}})"
        "\n";
    const SessionCost read =
        readTranscript(usageRecord("1", 1, "claude-opus-5-5", "2026-11-20T23:00:00.000Z") +
                       usageRecord("2", 2, "", "no time") + haiku +
                       usageRecord("4", 8, "claude-opus-5-5", "2026-11-21T23:00:00Z"));
    EXPECT_EQ(read.usage.byModel.at("claude-opus-5-5").tally.output, 9);
    EXPECT_EQ(read.usage.byModel.at("claude-opus-5-5").requests, 2);
    EXPECT_EQ(read.usage.byModel.at("").tally.output, 2);
    EXPECT_EQ(read.usage.byModel.at("claude-haiku-4-5").efforts.at("high"), 1);
    EXPECT_EQ(read.usage.days.at("2026-11-21").at("claude-opus-5-5").output, 1);
    EXPECT_EQ(read.usage.days.at("2026-11-21").at("claude-haiku-4-5").output, 4);
    EXPECT_EQ(read.usage.days.at("2026-11-22").at("claude-opus-5-5").output, 8);
    EXPECT_EQ(read.lastModel, "claude-opus-5-5");
    EXPECT_EQ(read.lastEffort, "high");
}

TEST(TranscriptUsageReader, keepsTheLatestBill) {
    const SessionCost read = readTranscript(
        R"({"type":"cost-state","totalCostUSD":1,"modelUsage":{"x":{"costUSD":1}}})"
        "\n"
        R"({"type":"cost-state","totalCostUSD":2.5,"modelUsage":{"b":{"costUSD":2,"inputTokens":3,)"
        R"("outputTokens":4,"cacheReadInputTokens":5,"cacheCreationInputTokens":6,)"
        R"("webSearchRequests":7},"a":{"costUSD":0.5},"none":{"inputTokens":1},)"
        R"("huge":{"costUSD":1e999}}})"
        "\n"
        R"({"type":"cost-state","totalCostUSD":9)");
    EXPECT_EQ(read.billedUSD, 2.5);
    const BilledSlice other{"b", 3, 4, 5, 6, 7, 2};
    EXPECT_THAT(read.billedModels, ElementsAre(BilledSlice{.model = "a", .costUSD = 0.5}, other));
}

TEST(TranscriptUsageReader, readsSubagentsIntoTheirSession) {
    TranscriptUsageReader reader(berlin);
    const auto add = [&](std::string line, TranscriptUsageReader::Writer writer) {
        reader.add(padded(std::move(line)), writer);
    };
    add(usageRecord("1", 1), TranscriptUsageReader::Writer::session);
    add(usageRecord("1", 1), TranscriptUsageReader::Writer::subagent);
    add(usageRecord("2", 2, "claude-haiku-4-5"), TranscriptUsageReader::Writer::subagent);
    add(R"({"type":"cost-state","totalCostUSD":1})", TranscriptUsageReader::Writer::subagent);
    const SessionCost read = reader.finish();
    EXPECT_EQ(read.tally().output, 3);
    EXPECT_EQ(read.trail.size(), 1U);
    EXPECT_EQ(read.lastModel, "claude-opus-5-5");
    EXPECT_FALSE(read.billedUSD);
}

TEST(LineSearch, findsTheSameInBlocksOfAnySize) {
    std::string text;
    std::mt19937 random(7);
    for (int line = 0; line < 400; ++line) {
        text += R"({"type":"user","x":")" + std::string(random() % 300, 'x') + "\"}\n";
        if (random() % 3 == 0) text += std::string(random() % 3, '\n');
        text += usageRecord(std::to_string(random() % 150), static_cast<int>(random() % 1000));
    }
    text.pop_back();
    const SessionCost whole = readTranscript(text, text.size());
    EXPECT_GT(whole.requests(), 100);
    for (const std::size_t block : {1, 2, 15, 16, 17, 64, 1000, 4096})
        EXPECT_EQ(readTranscript(text, block), whole) << block;
    const SessionCost part = readTranscript(text, 100, 20);
    EXPECT_EQ(part.requests(), 20);
    EXPECT_EQ(part.trail.commonPast(whole.trail), 20U);
}

TEST(LineSearch, findsAMarkWhereverItStands) {
    constexpr std::array marks{LineMark("\"output_"), LineMark("\"cost-state\"")};
    const MarkSearch search(marks);
    for (const LineMark& mark : marks) {
        for (std::size_t size = mark.text.size(); size < 160; ++size) {
            for (std::size_t place = 0; place + mark.text.size() <= size; ++place) {
                std::string text(size, '"');
                text.replace(place, mark.text.size(), mark.text);
                ASSERT_EQ(search.find(text, 0), place) << size;
                ASSERT_EQ(search.find(text, place + 1), std::string::npos) << size;
            }
        }
    }
}

TEST(LineSearch, passesOverALineThatIsTooLong) {
    std::string text = R"({"x":")" + std::string(LineSearch::longestLine + 4096, 'x');
    text += R"(","output_tokens":1})"
            "\n" +
            usageRecord("1", 5);
    EXPECT_EQ(readTranscript(text).tally().output, 5);
}

const std::string meta = R"({"type":"session_meta","payload":{"id":"thread","session_id":"x"}})"
                         "\n";
const std::string context =
    R"({"type":"turn_context","payload":{"model":"gpt-5-codex","effort":"high"}})"
    "\n";

TEST(RolloutUsageReader, readsTheRunningTotal) {
    struct Case {
        const char* name;
        std::string lines;
        TokenTally tally;
        std::int64_t requests;
    };
    const Case cases[] = {
        {"cached input is part of the input",
         context + tokenCount(100, 30, 5),
         {.input = 70, .output = 5, .thinking = 1, .cacheRead = 30},
         1},
        {"never more is cached than there is",
         tokenCount(100, 130, 5),
         {.input = 0, .output = 5, .thinking = 1, .cacheRead = 100},
         1},
        {"writes of unknown lifetime",
         tokenCount(1, 0, 2, 40),
         {.input = 1, .output = 2, .thinking = 1, .cacheWriteUnknown = 40},
         1},
        {"the last total counts",
         tokenCount(10, 0, 1) + tokenCount(10, 0, 1) + tokenCount(30, 5, 2),
         {.input = 25, .output = 2, .thinking = 1, .cacheRead = 5},
         2},
        {"a total that begins anew",
         tokenCount(100, 0, 50) + tokenCount(30, 5, 2),
         {.input = 25, .output = 2, .thinking = 1, .cacheRead = 5},
         1},
        {"no figures",
         R"({"type":"event_msg","payload":{"type":"token_count","info":null}})"
         "\n",
         {},
         0},
    };
    for (const Case& test : cases) {
        const SessionCost read = readRollout(meta + test.lines);
        EXPECT_EQ(read.tally(), test.tally) << test.name;
        EXPECT_EQ(read.requests(), test.requests) << test.name;
    }
}

TEST(RolloutUsageReader, givesWhatATurnAddsToItsModel) {
    const std::string other = R"({"type":"turn_context","payload":{"model":"gpt-5-mini"}})"
                              "\n";
    const SessionCost read =
        readRollout(meta + context + tokenCount(10, 0, 1) + other + tokenCount(15, 0, 3));
    EXPECT_EQ(read.usage.byModel.at("gpt-5-codex").tally.input, 10);
    EXPECT_EQ(read.usage.byModel.at("gpt-5-codex").efforts.at("high"), 1);
    EXPECT_EQ(read.usage.byModel.at("gpt-5-mini").tally.output, 2);
    EXPECT_EQ(read.usage.days.at("2026-11-21").at("gpt-5-mini").input, 5);
    EXPECT_EQ(read.lastModel, "gpt-5-mini");
}

}  // namespace
}  // namespace fleetwise::testing
