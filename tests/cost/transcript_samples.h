#pragma once

#include "cost/transcript_label.h"
#include "cost/transcript_lines.h"
#include "cost/transcript_reading_builder.h"
#include "support/temporary_directory.h"

#include <string>
#include <string_view>

namespace fleetwise::testing {

/// The recorded transcripts of tests/data/transcripts, without ".jsonl".
inline constexpr const char* recordedTranscripts[] = {
    "background", "compact", "interrupted", "loop", "max_tokens", "resumed", "titles",
};

inline std::string recorded(const std::string& name) {
    return contentsOf(dataPath("transcripts/" + name + ".jsonl"));
}

/// One reply of `output` tokens in a context of `context`.
inline std::string reply(std::string_view text, int output = 1, int context = 10) {
    return R"({"type":"assistant","timestamp":"2026-11-21T02:00:00.500Z","message":{"model":"m",)"
           R"("content":[{"type":"text","text":")" +
           std::string(text) + R"("}],"usage":{"input_tokens":)" + std::to_string(context) +
           R"(,"output_tokens":)" + std::to_string(output) + "}}}\n";
}

inline std::string prompt(std::string_view text, std::string_view further = "") {
    return R"({"type":"user","cwd":"/work","message":{"content":")" + std::string(text) + "\"}" +
           std::string(further) + "}\n";
}

/// A record of `bytes` bytes that tells nothing.
inline std::string filler(std::size_t bytes) {
    const std::string opening = R"({"type":"filler","x":")";
    return opening + std::string(bytes - opening.size() - 3, 'x') + "\"}\n";
}

/// What the lines of `text` add to `known`.
inline TranscriptReading readText(std::string_view text, TranscriptReading known = {}) {
    TranscriptReadingBuilder builder(std::move(known));
    const MemoryBytes bytes(text);
    (void)LineSplitter(bytes).forEachLine(
        0, text.size(), [&](std::string_view line, std::uint64_t) { builder.add(line); });
    return builder.finish();
}

/// The label of a file of these contents that lies in both windows.
inline TranscriptLabel labelOfText(std::string_view text) {
    TranscriptLabelFacts facts;
    JsonReader json;
    const MemoryBytes bytes(text);
    (void)LineSplitter(bytes).forEachLine(
        0, text.size(), [&](std::string_view line, std::uint64_t) {
            facts.add(json, line, {.isInHead = true, .isInTail = true});
        });
    return facts.label();
}

}  // namespace fleetwise::testing
