#include "reactions/notifier.h"

#include <gtest/gtest.h>

#include <vector>

namespace fleetwise::testing {
namespace {

class KeptNotifications final : public NotificationCentre {
public:
    void post(const Notification& notification) override { posted.push_back(notification); }
    std::vector<Notification> posted;
};

TEST(Notifier, tellsOfLimitsAndResets) {
    KeptNotifications centre;
    Notifier notifier(centre);
    Session session;
    session.id = "s1";
    session.name = "Umbau";
    const OwnGoals::Breach cost = OwnGoals::CostBreach{.usd = 5.126, .limit = 5};
    const OwnGoals::Breach share = OwnGoals::WindowBreach{.share = 29.9999, .limit = 30};
    notifier.announceBreach(cost, session);
    notifier.announceBreach(share, session);
    notifier.announceWindowReset();
    EXPECT_EQ(centre.posted, (std::vector<Notification>{
                                 {.identifier = "grenze-" + OwnGoals::announcementKey("s1", cost),
                                  .title = "Umbau",
                                  .subtitle = "Kostengrenze erreicht",
                                  .body = "5,13 $ von 5,00 $",
                                  .sessionId = "s1"},
                                 {.identifier = "grenze-" + OwnGoals::announcementKey("s1", share),
                                  .title = "Umbau",
                                  .subtitle = "Anteil am Fünf-Stunden-Fenster erreicht",
                                  .body = "30 % des Fensters",
                                  .sessionId = "s1"},
                                 {.identifier = "fenster-zurückgesetzt",
                                  .title = "Fünf-Stunden-Fenster zurückgesetzt",
                                  .subtitle = "",
                                  .body = "Das Kontingent zählt wieder von vorn.",
                                  .sessionId = ""}}));
}

}  // namespace
}  // namespace fleetwise::testing
