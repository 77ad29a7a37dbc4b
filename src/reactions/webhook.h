#pragma once

#include "fleet/session.h"
#include "foundation/date.h"
#include "foundation/json.h"
#include "reactions/fleet_reaction.h"
#include "reactions/http_poster.h"

#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace fleetwise {

/// Posts each change of a session's state to an address of the user's. Main thread only.
class Webhook final : public FleetReaction {
public:
    struct Outcome {
        Date at;
        bool isSuccess = false;
        std::string detail;  ///< for the user

        bool operator==(const Outcome&) const = default;
    };

    enum class AddressError {
        missing,
        incomplete,         ///< no scheme or no host, or no address at all
        unencryptedAbroad,  ///< plain http to a host outside the own network
    };

    static constexpr Seconds rateWindow{60};
    static constexpr std::size_t maximumPerWindow = 20;
    static constexpr Seconds timeLimit{5};

    /// `poster` outlives this. `version` is this program's, such as "0.1.0".
    Webhook(HttpPoster& poster, std::string version, std::function<Date()> now);

    /// Sends the transitions, where an address is set.
    void react(const FleetChange& change) override;

    /// Nothing for an address that may be used.
    static std::optional<AddressError> validate(std::string_view address);

    /// In the interface language.
    static std::string message(AddressError error);

    /// Whether the host, as written in an address but without brackets, is one of the user's own
    /// network: "localhost", "::1", names in ".local", and IPv4 addresses of 10/8, 127/8,
    /// 172.16/12 and 192.168/16 (RFC 1918, RFC 6762).
    static bool isLocal(std::string_view host);

    /// {"event": "state_changed", "source": "Fleetwise", "at": ISO 8601, "session": {"id", "name",
    /// "state", "previous", "project", "application"}}, the last three only where they are known.
    static Json payload(const Session& session, std::optional<SessionState> previous, Date at);

    /// {"event": "test", "source": "Fleetwise", "at": ISO 8601, "version"}.
    static Json testPayload(const std::string& version, Date at);

    /// At most `maximumPerWindow` within `rateWindow`; what comes beyond is dropped. An address
    /// that may not be used is never contacted.
    void send(const Session& session, std::optional<SessionState> previous,
              const std::string& address);

    /// Sends a test; `completion` is called with what came of it: at once where the address may not
    /// be used, else after this has returned, and no more once this object is destroyed.
    void test(const std::string& address, std::function<void(const Outcome&)> completion);

    /// Of the delivery that ended last.
    const std::optional<Outcome>& lastOutcome() const { return outcome; }

private:
    using Completion = std::function<void(const Outcome&)>;

    /// The address is one that may be used.
    void post(const std::string& address, const Json& body, Completion completion);
    Outcome record(bool isSuccess, std::string detail);

    HttpPoster& poster;
    const std::string version;
    std::function<Date()> now;
    std::deque<Date> recent;  ///< the deliveries of the last minute, the oldest first
    std::optional<Outcome> outcome;
    const std::shared_ptr<bool> aliveToken = std::make_shared<bool>(true);
};

}  // namespace fleetwise
