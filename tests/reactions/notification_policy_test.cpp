#include "reactions/notification_policy.h"

#include <gtest/gtest.h>

namespace fleetwise::testing {
namespace {

using Anchor = NotificationPolicy::Anchor;

TEST(NotificationPolicy, keysOfProjectsDoNotDependOnSlashesAtTheEnd) {
    const std::pair<std::optional<std::string>, std::optional<std::string>> rows[] = {
        {"/home/me/shop", "p:/home/me/shop"},
        {"/home/me/shop//", "p:/home/me/shop"},
        {"/", "p:"},
        {"", {}},
        {{}, {}},
    };
    for (const auto& [project, key] : rows)
        EXPECT_EQ(NotificationPolicy::key(Anchor::project, "x", project), key) << key.value_or("-");
    EXPECT_EQ(NotificationPolicy::key(Anchor::session, "x", {}), "s:x");
}

TEST(NotificationPolicy, theNearestChoiceDecides) {
    using Choice = std::optional<bool>;
    struct Row {
        const char* name;
        Choice session, project;
        bool defaultForNew, notifies;
        std::optional<std::string> cwd = "/shop/";
    };
    const Row rows[] = {
        {"no choice", {}, {}, true, true},
        {"no choice, new ones are silent", {}, {}, false, false},
        {"silent project", {}, false, true, false},
        {"notifying project", {}, true, false, true},
        {"silent session in a notifying project", false, true, true, false},
        {"notifying session in a silent project", true, false, false, true},
        {"without a project", {}, false, true, true, std::nullopt},
        {"another project", {}, false, true, true, "/shop/cart"},
    };
    for (const Row& row : rows) {
        NotificationPolicy::Overrides overrides{{"s:another", !row.notifies}};
        if (row.session) overrides["s:x"] = *row.session;
        if (row.project) overrides["p:/shop"] = *row.project;
        Session session;
        session.id = "x";
        session.cwd = row.cwd;
        EXPECT_EQ(NotificationPolicy::notifies(session, overrides, row.defaultForNew), row.notifies)
            << row.name;
    }
}

}  // namespace
}  // namespace fleetwise::testing
