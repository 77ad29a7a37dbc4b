#include "cost/transcript_label.h"

#include "cost/transcript_reader.h"
#include "cost/transcript_samples.h"

#include <gtest/gtest.h>

namespace fleetwise::testing {
namespace {

TEST(PromptText, isFreedOfMarkers) {
    const struct {
        const char* name;
        std::optional<std::string_view> prompt;
        std::optional<std::string> cleaned;
    } rows[] = {
        {"nothing", std::nullopt, std::nullopt},
        {"plain", " do it\n", "do it"},
        {"blank", " \n\t", std::nullopt},
        {"mark", "<!-- fleetwise:verbund=a1 -->\n do it", "do it"},
        {"marks around", "<!-- fleetwise:verbund=a -->do<!-- fleetwise:verbund=b --> it", "do it"},
        {"only a mark", "<!-- fleetwise:verbund=a1 -->", std::nullopt},
        {"open mark", "x <!-- fleetwise:verbund=a1", "x <!-- fleetwise:verbund=a1"},
        {"another comment", "<!-- verbund=a1 -->", "<!-- verbund=a1 -->"},
        {"caveat", "<local-command-caveat>The command below</local-command-caveat>", std::nullopt},
        {"command",
         "<command-name>/compact</command-name>\n <command-message>compact"
         "</command-message>\n <command-args>keep</command-args>",
         "/compact"},
        {"command, other order",
         "<command-message>loop</command-message>\n"
         "<command-name>/loop</command-name>",
         "/loop"},
        {"talk about commands", "why <command-name>/x</command-name>?",
         "why <command-name>/x</command-name>?"},
        {"torn command", "<command-name>/compact", "<command-name>/compact"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(TranscriptReader::cleanedPrompt(row.prompt), row.cleaned);
    }
}

TEST(TranscriptLabel, isShortenedToOneLine) {
    EXPECT_EQ(TranscriptLabel::shortened("<!-- fleetwise:verbund=a -->\n\n  Grüße an alle \nx", 80),
              "Grüße an alle");
    EXPECT_EQ(TranscriptLabel::shortened("Grüße an alle", 6), "Grüße…");
    EXPECT_EQ(TranscriptLabel::shortened("a\r\nb", 80), "a");
    EXPECT_EQ(TranscriptLabel::shortened(" \n", 80), "");
}

TEST(TranscriptLabel, tellsRecordedTranscripts) {
    const struct {
        const char* name;
        std::optional<std::string> title;
        std::optional<std::string> lastPrompt;
    } rows[] = {
        {"background", {}, "play bgbash"},
        {"compact", {}, "play plain2"},
        {"interrupted", {}, "play longbash"},
        {"loop", {}, "/loop play wakeup"},
        {"max_tokens", {}, "play maxtokens"},
        {"resumed", {}, "play plain2"},
        {"titles", "Mock demo session title", "play plain2"},
    };
    ASSERT_EQ(std::size(rows), std::size(recordedTranscripts));
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(labelOfText(recorded(row.name)),
                  (TranscriptLabel{row.title, row.lastPrompt, "/home/dev/work/demo"}));
    }
}

TEST(TranscriptLabel, takesWhatAPersonTyped) {
    const std::string first = prompt("first");
    const struct {
        const char* name;
        std::string line;
        const char* lastPrompt;
    } rows[] = {
        {"typed", prompt("next"), "next"},
        {"from a peer", prompt("next", R"(,"origin":{"body":1})"), "next"},
        {"meta", prompt("next", R"(,"isMeta":true)"), "first"},
        {"summary", prompt("next", R"(,"isCompactSummary":true)"), "first"},
        {"subagent's", prompt("next", R"(,"isSidechain":true)"), "first"},
        {"notification", prompt("next", R"(,"origin":{"kind":"task-notification"})"), "first"},
        {"output of a command", prompt("<local-command-stdout>x</local-command-stdout>"), "first"},
        {"reminder", prompt("<system-reminder>x</system-reminder>"), "first"},
        {"interrupt", prompt("[Request interrupted by user for tool use]"), "first"},
        {"blank", prompt(" "), "first"},
        {"items",
         R"({"type":"user","message":{"content":[{"type":"text","text":"<system-reminder>x"},)"
         R"({"type":"tool_result","content":"no"},{"type":"text","text":"next"}]}})"
         "\n",
         "next"},
        {"the agent's own record",
         R"({"type":"last-prompt","lastPrompt":"next"})"
         "\n",
         "next"},
        {"queued",
         R"({"type":"queue-operation","content":"next"})"
         "\n",
         "first"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(labelOfText(first + row.line).lastPrompt, row.lastPrompt);
    }
    EXPECT_EQ(labelOfText(R"({"type":"queue-operation","content":"<task-notification>"})"
                          "\n"
                          R"({"type":"queue-operation","content":"queued"})"
                          "\n")
                  .text(),
              "queued");
}

TEST(TranscriptLabel, prefersTheUsersTitle) {
    const std::string own = R"({"type":"custom-title","customTitle":"own"})"
                            "\n";
    const std::string made = R"({"type":"ai-title","aiTitle":"made"})"
                             "\n";
    EXPECT_EQ(labelOfText(own + made + prompt("p")).text(), "own");
    EXPECT_EQ(labelOfText(made + prompt("p")).text(), "made");
    EXPECT_EQ(labelOfText(own + made +
                          R"({"type":"custom-title","customTitle":" "})"
                          "\n")
                  .title,
              "made");
    EXPECT_EQ(labelOfText(prompt("p")).text(), "p");
}

}  // namespace
}  // namespace fleetwise::testing
