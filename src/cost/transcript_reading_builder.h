#pragma once

#include "cost/transcript_reading.h"
#include "cost/transcript_record.h"
#include "foundation/json_reader.h"

#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace fleetwise {

/// Adds the lines of a transcript, in order, to a reading.
class TranscriptReadingBuilder {
public:
    explicit TranscriptReadingBuilder(TranscriptReading soFar) : reading(std::move(soFar)) {}

    /// One line, followed by jsonPadding readable bytes. What is not a JSON object is passed over.
    void add(std::string_view line);

    /// The reading with all lines added. The builder is used up.
    TranscriptReading finish();

private:
    void addUser(const TranscriptRecord& record);
    void addAssistant(const TranscriptRecord& record);
    void addUsage(const TranscriptUsage& usage);
    void addSentText(std::string_view text, const TranscriptRecord& record);

    JsonReader json;
    TranscriptReading reading;
    /// When the latest reply of these lines was written, empty where it does not say: parsed once
    /// at the end, not for every reply.
    std::optional<std::string> lastReplyTimestamp;
};

}  // namespace fleetwise
