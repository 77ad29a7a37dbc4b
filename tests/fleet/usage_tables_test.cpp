// Tables of use: who is told apart, what is summed, and in which order it stands.

#include "fleet/usage_tables.h"

#include "fleet/session_usage.h"

#include <gmock/gmock.h>

namespace fleetwise::testing {
namespace {

using ::testing::ElementsAre;

constexpr auto opus = "claude-opus-5-5";

std::shared_ptr<SessionCost> costOf(std::int64_t tokens, const std::string& day = "2026-11-21") {
    auto cost = std::make_shared<SessionCost>();
    cost->usage.add({.model = opus, .day = day, .effort = {}, .tally = {.input = tokens}});
    cost->lastModel = opus;
    return cost;
}

class UsageTables : public ::testing::Test {
protected:
    UsageTables() {
        Session live;
        live.id = "live";
        live.name = "Rename the module";
        live.cwd = "/srv/billing";
        live.lastActivityAt = dateFromSeconds(1'795'226'700);
        listed.push_back(live);
        past.id = "past";
        past.title = "An older one";
        past.cwd = "/srv/billing";
        past.lastActivityAt = dateFromSeconds(1'795'000'000);
        costs["live"] = costOf(5'000'000);
        costs["past"] = costOf(1'000'000, "2026-11-01");
        costs["gone"] = costOf(20'000'000);
        const auto thread = costOf(2'000'000);
        thread->startedBy = "live";
        costs["thread"] = thread;
        const auto deeper = costOf(1'000'000);
        deeper->startedBy = "thread";
        costs["threadOfThread"] = deeper;
    }

    UsageSources sources() {
        return {costs, listed,
                [this](const std::string& id) { return id == past.id ? &past : nullptr; }};
    }
    /// As though nothing had been copied.
    ModelTallies used(const std::vector<std::string>& ids, const std::string& first) const {
        ModelTallies sum;
        for (const std::string& id : ids) {
            for (const auto& [day, models] : costs.at(id)->usage.days) {
                for (const auto& [model, tally] : models)
                    if (day >= first) sum[model] += tally;
            }
        }
        return sum;
    }
    std::vector<UsageShare> projects(const std::string& first) {
        return usageByProject(
            sources(), first, [&](const auto& ids) { return used(ids, first); },
            Prices::Book::builtIn(), UsageFigure::tokens);
    }

    SessionCosts costs;
    std::vector<Session> listed;
    ArchiveEntry past;
};

TEST_F(UsageTables, gatherProjectsWithTheThreadsOfTheirSessions) {
    const auto all = projects("");
    ASSERT_EQ(all.size(), 2U);
    EXPECT_EQ(all[0].key, "") << "nothing tells where it worked";
    EXPECT_EQ(all[1].key, "/srv/billing");
    EXPECT_EQ(all[1].tally.input, 9'000'000);
    EXPECT_EQ(all[1].sessions, 2U) << "threads are none";
    const auto recent = projects("2026-11-15");
    EXPECT_EQ(recent[1].tally.input, 8'000'000);
    EXPECT_EQ(recent[1].sessions, 1U);
    EXPECT_TRUE(projects("2026-12-01").empty());
}

TEST_F(UsageTables, rankModelsByWhatIsAskedFor) {
    const ModelTallies tallies{{opus, {.input = 1'000'000}},
                               {"claude-opus-5-5-20260801", {.input = 1'000'000}},
                               {"claude-haiku-5", {.input = 3'000'000}},
                               {"claude-sonnet-5", {}},
                               {"strange", {.input = 1}}};
    const auto names = [&](UsageFigure figure) {
        std::vector<std::string> found;
        for (const auto& share : usageByModel(tallies, Prices::Book::builtIn(), figure))
            found.push_back(share.key);
        return found;
    };
    EXPECT_THAT(names(UsageFigure::tokens), ElementsAre("Haiku 5", "Opus 5.5", "strange"));
    EXPECT_THAT(names(UsageFigure::money), ElementsAre("Opus 5.5", "Haiku 5", "strange"));
    const auto all = usageByModel(tallies, Prices::Book::builtIn(), UsageFigure::money);
    const auto table = modelUsageTable(all, {.tokens = false, .money = true});
    EXPECT_THAT(table.headings, ElementsAre("Modell", "Kosten in US-Dollar"));
    EXPECT_EQ(table.rows[0][1].number, 10.0);
    EXPECT_FALSE(table.rows[2][1].number) << "no price is not nothing";
}

TEST_F(UsageTables, tellEverySessionThatStandsForItself) {
    const auto sessions = sessionUsages(sources(), [this](const auto& id) {
        return costs.at(id)->figures(Prices::Book::builtIn());
    });
    std::vector<std::string> names;
    for (const SessionUsage& session : sessions)
        names.push_back(session.name);
    EXPECT_THAT(names, ElementsAre("gone", "Rename the module", "An older one"));
    EXPECT_FALSE(sessions[0].lastActivityAt);
    const auto table =
        sessionUsageTable(sessions, {.tokens = false, .money = true},
                          {.calendar = ::date::locate_zone("Europe/Berlin"), .home = "/srv"});
    EXPECT_EQ(commaSeparated(table),
              "Sitzung,Projekt,Agent,Modell,Anfragen,Kosten in US-Dollar,Zuletzt\r\n"
              "gone,Ohne Projekt,Claude Code,Opus 5.5,1,100,\r\n"
              "Rename the module,~/billing,Claude Code,Opus 5.5,1,25,2026-11-21 03:05\r\n"
              "An older one,~/billing,Claude Code,Opus 5.5,1,5,2026-11-18 12:06\r\n");
}

TEST(ProjectNames, tellFoldersOfOneNameApartByTheirPaths) {
    const ProjectNames names({"/home/me/api", "/srv/api", "/srv/web", ""}, "/home/me");
    EXPECT_EQ(names.name("/home/me/api"), "~/api");
    EXPECT_EQ(names.name("/srv/web"), "web");
    EXPECT_EQ(names.path("/srv/web"), "/srv/web");
    EXPECT_EQ(names.name(""), "Ohne Projekt");
}

}  // namespace
}  // namespace fleetwise::testing
