#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace fleetwise {

/// What a text that was sent to an agent means to a reader of it. Agents and this program put
/// markers of their own into such texts.
class PromptText {
public:
    /// The text freed of markers, for display: without federation marks, a slash command reduced
    /// to its name, trimmed. Nothing where no words of the user's remain.
    static std::optional<std::string> cleaned(std::string_view text);

    /// As `cleaned`, but nothing also for what an agent writes in the user's place: task
    /// notifications, output of local commands, reminders, interrupts.
    static std::optional<std::string> typedByUser(std::string_view text);

    /// The id in the last federation mark, "<!-- fleetwise:verbund=ID -->", trimmed and not empty.
    static std::optional<std::string> federationId(std::string_view text);

    /// The mark that makes a session whose prompt carries it part of the federation.
    static std::string federationMark(std::string_view federationId);

    /// The first line that is not empty, without federation marks and trimmed, cut to `limit`
    /// characters.
    static std::string shortened(std::string_view text, std::size_t limit);
};

}  // namespace fleetwise
