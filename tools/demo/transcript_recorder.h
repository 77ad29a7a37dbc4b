#pragma once

#include "demo/scenes.h"
#include "generator/books.h"
#include "generator/random.h"

namespace fleetwise::demo {

/// Goes on with a session's transcript as the agent would: prompts, answers, tools with their
/// results, and the tokens that each request took.
class TranscriptRecorder {
public:
    TranscriptRecorder(const generator::SessionBook& book, std::uint64_t seed);

    /// Appends what the agent writes for the event `payload` of the scene; for most there is
    /// nothing.
    void append(const Scene& scene, const Json& payload, Date now);

private:
    void appendPrompt(const Scene& scene, const Json& payload);
    void appendToolUse(const Json& payload);
    void appendToolResult(const Json& payload);
    void appendAnswer(const Json& payload);
    void appendFailure(const Json& payload);
    void appendCompaction();
    void appendReply(const Json& content, std::string_view stopReason);
    Json record(std::string_view type);
    Json usage();
    void line(const Json& record);

    std::string path;
    Json common;  ///< what most records hold
    generator::Random random;
    std::string model;
    std::int64_t contextTokens;
    std::string parent;
    std::string lastPrompt;
    Date time;
    std::string text;  ///< what is to be appended
};

}  // namespace fleetwise::demo
