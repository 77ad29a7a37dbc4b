#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace fleetwise {

class JsonReader;
struct TranscriptRecord;

/// How a session is called in a list.
struct TranscriptLabel {
    std::optional<std::string> title;  ///< given by the user, else by the agent
    std::optional<std::string> lastPrompt;
    std::optional<std::string> cwd;

    bool operator==(const TranscriptLabel&) const = default;

    /// The title, else the last prompt.
    std::optional<std::string> text() const { return title ? title : lastPrompt; }

    /// The first line of `text` that is not empty, without markers, at most `limit` characters.
    static std::string shortened(std::string_view text, std::size_t limit);
};

/// Gathers a label from the beginning and the end of a transcript. What it has gathered is kept,
/// so that of a file that grew only the new lines are added.
class TranscriptLabelFacts {
public:
    /// Which of the two windows a line lies in; small files lie in both.
    struct Place {
        bool isInHead = false;
        bool isInTail = false;
    };

    /// One line, followed by jsonPadding readable bytes; lines are added in the file's order.
    void add(JsonReader& json, std::string_view line, Place place);

    TranscriptLabel label() const;

    bool operator==(const TranscriptLabelFacts&) const = default;

private:
    void addToHead(const TranscriptRecord& record);
    void addToTail(const TranscriptRecord& record);

    std::optional<std::string> customTitle;
    std::optional<std::string> aiTitle;
    std::optional<std::string> lastPrompt;
    std::optional<std::string> firstPrompt;
    std::optional<std::string> firstCwd;  ///< of the head
    std::optional<std::string> lastCwd;   ///< of the tail, where the head has none
};

}  // namespace fleetwise
