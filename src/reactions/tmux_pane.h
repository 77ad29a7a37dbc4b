#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace fleetwise {

/// A pane of a tmux server, listed once for each session that shows its window. The ids are those
/// that tmux itself gives ("%5", "@2", "$1"), and safe as the targets of its commands; the name is
/// the user's.
struct TmuxPane {
    std::int32_t process = 0;  ///< what was started in it
    std::string id;
    std::string window;
    std::string session;
    std::string sessionName;  ///< printable

    bool operator==(const TmuxPane&) const = default;

    /// What `list-panes` is given for -F. The name is last and the rest has no blanks.
    static constexpr std::string_view format =
        "#{pane_pid} #{pane_id} #{window_id} #{session_id} #{session_name}";

    /// Lines of another form are left out.
    static std::vector<TmuxPane> parse(std::string_view listing);
};

/// A terminal that shows a session of a tmux server.
struct TmuxClient {
    std::int32_t process = 0;
    std::int64_t lastActivity = 0;  ///< in seconds since 1970
    std::string session;            ///< the id of the one it shows
    std::string name;               ///< as tmux takes it for a target: the path of its terminal

    bool operator==(const TmuxClient&) const = default;

    /// What `list-clients` is given for -F.
    static constexpr std::string_view format =
        "#{client_pid} #{client_activity} #{session_id} #{client_name}";

    /// Lines of another form are left out.
    static std::vector<TmuxClient> parse(std::string_view listing);
};

}  // namespace fleetwise
