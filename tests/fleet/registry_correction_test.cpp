#include "fleet/registry_correction.h"

#include <gtest/gtest.h>

namespace fleetwise {
namespace {

const Date now = dateFromSeconds(1'795'226'700);

SessionRegistry::Entry entry(std::optional<std::string> status, std::string waitingFor = {}) {
    SessionRegistry::Entry told;
    told.pid = 1;
    told.sessionId = "s";
    told.status = std::move(status);
    if (!waitingFor.empty()) told.waitingFor = std::move(waitingFor);
    told.statusUpdatedAt = now - Seconds(5);
    return told;
}

TEST(RegistryCorrection, tellsWhatNoEventTells) {
    using enum SessionState;
    const struct {
        const char* name;
        std::optional<SessionState> recorded;
        SessionRegistry::Entry told;
        SessionState expected;
    } rows[] = {
        {"interrupted", working, entry("idle"), idle},
        {"interrupted while compacting", compacting, entry("idle"), idle},
        {"still at work", working, entry("busy"), working},
        {"a background command keeps it in the shell", working, entry("shell"), working},
        {"answered", decision, entry("busy"), working},
        {"approved", waiting, entry("busy"), working},
        {"refused", waiting, entry("idle"), idle},
        {"still asked", decision, entry("waiting", "input needed"), decision},
        {"asked for permission without an event", working, entry("waiting", "permission prompt"),
         waiting},
        {"asked a question without an event", working, entry("waiting", "input needed"), decision},
        {"asked while the answer lay ready", done, entry("waiting", "permission prompt"), waiting},
        {"the user opened a dialog", working, entry("waiting", "dialog open"), working},
        {"went on after the answer", done, entry("busy"), working},
        {"went on after a failure", failed, entry("busy"), working},
        {"went on", idle, entry("busy"), working},
        {"an answer stays ready", done, entry("idle"), done},
        {"a failure stays", failed, entry("idle"), failed},
        {"a new kind of status changes nothing", working, entry("meditating"), working},
        {"an older agent tells no status", done, entry({}), done},
        {"no record, busy", {}, entry("busy"), working},
        {"no record, at rest", {}, entry("idle"), idle},
        {"no record, in the shell", {}, entry("shell"), idle},
        {"no record, permission", {}, entry("waiting", "permission prompt"), waiting},
        {"no record, question", {}, entry("waiting", "input needed"), decision},
        {"no record, a dialog of the user's", {}, entry("waiting", "dialog open"), idle},
        {"no record and no status", {}, entry({}), unknown},
        {"resumed without an event", dormant, entry("busy"), working},
        {"ended, no status", dormant, entry({}), dormant},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const auto finding = reconciledState(row.recorded, now - Seconds(60), row.told, now);
        EXPECT_EQ(finding.state, row.expected);
        EXPECT_FALSE(finding.isUnsettled);
        const bool isTold = row.recorded && *row.recorded != row.expected;
        EXPECT_EQ(finding.toldByRegistryAt.has_value(), isTold || !row.recorded);
    }
}

TEST(RegistryCorrection, believesOnlyWhatIsNewerAndSettled) {
    const struct {
        const char* name;
        double statusAge;
        double eventAge;
        SessionState expected;
        bool isUnsettled;
    } rows[] = {
        {"older than the event", 10, 5, SessionState::working, false},
        {"at the moment of the event", 5, 5, SessionState::working, false},
        {"newer, just now", 0.5, 5, SessionState::working, true},
        {"newer, for a second", 1, 5, SessionState::idle, false},
        {"from a clock that was set back since", -30, 5, SessionState::idle, false},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        auto told = entry("idle");
        told.statusUpdatedAt = now - Seconds(row.statusAge);
        const auto finding =
            reconciledState(SessionState::working, now - Seconds(row.eventAge), told, now);
        EXPECT_EQ(finding.state, row.expected);
        EXPECT_EQ(finding.isUnsettled, row.isUnsettled);
    }
}

}  // namespace
}  // namespace fleetwise
