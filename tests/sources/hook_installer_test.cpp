#include "sources/hook_installer.h"

#include "foundation/directory.h"
#include "foundation/json.h"
#include "support/temporary_directory.h"

#include <gmock/gmock.h>

#include <cstdio>
#include <filesystem>

namespace fleetwise::testing {
namespace {

using ::testing::HasSubstr;
using ::testing::StartsWith;

const Date now = *parseInternetDate("2026-11-12T13:05:40.250Z");

Json groupWith(const Json& command) {
    return {{"hooks", {{{"type", "command"}, {"command", command}}}}};
}

/// Settings with an entry of ours for every event, beside a foreign one.
Json installedSettings() {
    Json settings{{"model", "opus"}, {"hooks", Json::object()}};
    for (const std::string_view event : HookInstaller::events) {
        const std::string command = "'/x/fleetwise-hook' " + std::string(event) + " # fleetwise";
        settings["hooks"][std::string(event)] = {groupWith("notify-send done"), groupWith(command)};
    }
    return settings;
}

TEST(HookSettings, countAsInstalledOnlyWithEveryEvent) {
    const TemporaryDirectory folder;
    const std::string program = folder.write("fleetwise-hook", "program");
    const auto changed = [](const char* pointer, const Json& value) {
        Json settings = installedSettings();
        settings[Json::json_pointer(pointer)] = value;
        return settings.dump();
    };
    Json withoutLast = installedSettings();
    withoutLast["hooks"].erase("SessionEnd");
    const struct {
        const char* name;
        std::string settings;
        bool isInstalled;
    } rows[] = {
        {"all there", installedSettings().dump(), true},
        {"odd neighbours", changed("/hooks/Stop/0", Json::parse("[null,{\"hooks\":7},3]")), true},
        {"odd hooks", changed("/hooks/Stop/0/hooks", Json::parse("[null,3,{\"command\":4}]")),
         true},
        {"one event missing", withoutLast.dump(), false},
        {"one event without ours", changed("/hooks/Stop/1", groupWith("notify-send")), false},
        {"command is no text", changed("/hooks/Stop/1", groupWith(12)), false},
        {"event is no list", changed("/hooks/Stop", groupWith("x # fleetwise")), false},
        {"hooks is no object", changed("/hooks", Json::array()), false},
        {"no hooks", R"({"model":"opus"})", false},
        {"no JSON", "{", false},
    };
    for (const auto& row : rows) {
        const std::string settings = folder.write("settings.json", row.settings);
        EXPECT_EQ(HookInstaller::isInstalled(settings, program), row.isInstalled) << row.name;
    }
}

TEST(HookSettings, areReadWhereTheUserPutThem) {
    const TemporaryDirectory folder;
    const std::string program = folder.write("fleetwise-hook", "program");
    const std::string settings = folder.write("dotfiles/settings.json", installedSettings().dump());
    const struct {
        const char* name;
        std::string settings;
        std::string program;
        bool isInstalled;
    } rows[] = {
        {"link", folder.makeLink("link.json", settings), program, true},
        {"dangling link", folder.makeLink("dangling.json", folder.at("missing")), program, false},
        {"link to itself", folder.makeLink("loop.json", "loop.json"), program, false},
        {"FIFO", folder.makeFifo("fifo.json"), program, false},
        {"no program", settings, folder.at("missing"), false},
        {"folder for a program", settings, folder.makeDirectory("folder"), false},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(HookInstaller::isInstalled(row.settings, row.program), row.isInstalled)
            << row.name;
    }
}

TEST(HookProgram, isCurrentWhereItIsTheBundledOne) {
    const TemporaryDirectory folder;
    const std::string bundled = folder.write("bundled", "version 2");
    const std::string missing = folder.at("missing");
    EXPECT_TRUE(HookInstaller::isCurrent(bundled, folder.write("same", "version 2")));
    EXPECT_FALSE(HookInstaller::isCurrent(bundled, folder.write("other", "version 1")));
    EXPECT_FALSE(HookInstaller::isCurrent(bundled, missing));
    EXPECT_FALSE(HookInstaller::isCurrent(missing, missing));
    EXPECT_TRUE(HookInstaller::isCurrent({}, missing));
}

/// A user's folder with the program of a new version to install.
struct Installation {
    TemporaryDirectory folder;
    HookInstaller::Places places{.settingsFile = folder.at("settings.json"),
                                 .stateDir = folder.at("state"),
                                 .statusDir = folder.at("state/status"),
                                 .installedHook = folder.at("state/fleetwise-hook"),
                                 .bundledHook = folder.write("bundled", "program")};

    std::string settings() const { return contentsOf(places.settingsFile); }
};

/// Settings with ours behind the foreign groups of every event.
Json withOurs(Json settings, const std::string& installedHook) {
    for (const std::string_view event : HookInstaller::events) {
        settings["hooks"][std::string(event)].push_back(
            groupWith(HookInstaller::command(event, installedHook)));
    }
    return settings;
}

std::filesystem::perms modeOf(const std::string& path) {
    return std::filesystem::status(path).permissions();
}

TEST(HookEntries, comeAndGoWithoutATraceInForeignOnes) {
    const struct {
        const char* name;
        const char* before;
        const char* foreign;  ///< what is left when ours are gone, where that is not all
    } rows[] = {
        {"no hooks", R"({"model":"opus","env":{"A":"/ü"}})"},
        {"foreign groups in their order",
         R"({"hooks":{"Stop":[{"hooks":[{"command":"z"},{"command":"a"}]},{"matcher":"B"}]}})"},
        {"ours of another place among foreign ones",
         R"({"hooks":{"Stop":[{"matcher":"*","hooks":[{"command":"z"},{"command":"/x # fleetwise"},
             {"command":"a"}]},{"hooks":[{"command":"'/y' Stop # fleetwise"}]},{"hooks":[]}]}})",
         R"({"hooks":{"Stop":[{"matcher":"*","hooks":[{"command":"z"},{"command":"a"}]},
             {"hooks":[]}]}})"},
        {"odd groups and hooks",
         R"({"hooks":{"Stop":[null,"x",{"hooks":7},{"hooks":[0,{"command":[]}]}]}})"},
        {"an event that we do not know",
         R"({"hooks":{"New":[{"hooks":[{"command":"# fleetwise"}]}]}})"},
        {"event is no list", R"({"hooks":{"Stop":{"a":1}}})", "{}"},
        {"hooks is no object", R"({"hooks":["Stop"],"a":1})", R"({"a":1})"},
        {"no object", R"([{"hooks":{}}])", "{}"},
        {"torn", R"({"model":"opus","hooks":{"Stop":[{"ho)", "{}"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const Installation installation;
        const auto& places = installation.places;
        installation.folder.write("settings.json", row.before);
        const Json foreign = Json::parse(row.foreign != nullptr ? row.foreign : row.before);

        ASSERT_TRUE(HookInstaller::install(places, now));
        const std::string installed = installation.settings();
        EXPECT_EQ(Json::parse(installed), withOurs(foreign, places.installedHook));
        ASSERT_TRUE(HookInstaller::install(places, now));
        EXPECT_EQ(installation.settings(), installed) << "a second time";
        EXPECT_TRUE(HookInstaller::isInstalled(places.settingsFile, places.installedHook));

        ASSERT_TRUE(HookInstaller::uninstall(places, now));
        EXPECT_EQ(Json::parse(installation.settings()), foreign);
        EXPECT_EQ(contentsOf(places.installedHook), "program");
    }
}

TEST(HookEntries, areNotLookedForInWhatIsNoSettings) {
    const Installation installation;
    const auto uninstalls = [&] {
        const auto backup = HookInstaller::uninstall(installation.places, now);
        return backup && !backup->path;
    };
    EXPECT_TRUE(uninstalls());
    EXPECT_FALSE(inspectFile(installation.places.settingsFile));
    for (const char* text : {"", "[]", R"({"hooks":{"Stop":[)"}) {
        installation.folder.write("settings.json", text);
        EXPECT_TRUE(uninstalls());
        EXPECT_EQ(installation.settings(), text);
    }
}

TEST(HookCommand, reachesTheInstalledProgramThroughTheShell) {
    Installation installation;
    installation.folder.write("bundled", "#!/bin/sh\necho \"$# $1\"\n");
    installation.places.installedHook =
        installation.folder.write("state/it's $HOME; \"here\"", "the version before");
    ASSERT_TRUE(HookInstaller::install(installation.places, now));
    const Json settings = Json::parse(installation.settings());
    const std::string command = settings["hooks"]["Stop"][0]["hooks"][0]["command"];

    std::FILE* shell = ::popen(command.c_str(), "r");
    ASSERT_NE(shell, nullptr);
    char output[16] = {};
    EXPECT_NE(std::fgets(output, sizeof output, shell), nullptr) << command;
    EXPECT_EQ(::pclose(shell), 0);
    EXPECT_STREQ(output, "1 Stop\n");
}

TEST(HookSettings, areBackedUpBeforeEachChange) {
    const Installation installation;
    const auto& places = installation.places;
    EXPECT_FALSE(HookInstaller::install(places, now)->path) << "nothing was there";
    EXPECT_EQ(modeOf(places.settingsFile), std::filesystem::perms(0600));

    std::string before("{\"corrupt\":\xff\0\r\n", 15);
    installation.folder.write("settings.json", before);
    std::filesystem::permissions(places.settingsFile, std::filesystem::perms(0640));
    for (const char* end : {"Z.json", "Z-2.json", "Z-3.json"}) {
        const auto backup = HookInstaller::install(places, now);
        ASSERT_TRUE(backup && backup->path) << end;
        EXPECT_EQ(*backup->path, places.stateDir + "/settings.backup.2026-11-12T13-05-40" + end);
        EXPECT_EQ(contentsOf(*backup->path), before) << end;
        EXPECT_EQ(modeOf(*backup->path), std::filesystem::perms(0600));
        EXPECT_EQ(modeOf(places.settingsFile), std::filesystem::perms(0640));
        before = installation.settings();
    }
}

TEST(HookSettings, areWrittenThroughLinks) {
    const struct {
        const char* link;
        const char* target;  ///< from the link's folder
    } rows[] = {
        {"link.json", "dotfiles/settings.json"},
        {"link to a link.json", "link.json"},
        {"dangling.json", "dotfiles/new.json"},
    };
    Installation installation;
    installation.folder.write("dotfiles/settings.json", R"({"model":"opus"})");
    for (const auto& row : rows) {
        SCOPED_TRACE(row.link);
        installation.places.settingsFile = installation.folder.makeLink(row.link, row.target);
        ASSERT_TRUE(HookInstaller::install(installation.places, now));
        EXPECT_EQ(inspectFile(installation.places.settingsFile)->kind, FileKind::link);
        EXPECT_THAT(contentsOf(installation.folder.at(row.target)), HasSubstr("SessionEnd"));
    }
    EXPECT_THAT(contentsOf(installation.folder.at("dotfiles/settings.json")), HasSubstr("opus"));
}

TEST(HookSettings, stayAsTheyWereWhereInstallingFails) {
    using Places = HookInstaller::Places;
    const TemporaryDirectory odd;
    const std::string file = odd.write("file", "");
    const std::string folder = odd.makeDirectory("folder");
    const struct {
        const char* name;
        std::string Places::*place;
        std::string path;
    } rows[] = {
        {"folder for a program", &Places::installedHook, folder},
        {"file for the status folder", &Places::statusDir, file},
        {"file for the backups' folder", &Places::stateDir, file},
        {"folder for settings", &Places::settingsFile, folder},
        {"FIFO for settings", &Places::settingsFile, odd.makeFifo("fifo")},
        {"circle of links", &Places::settingsFile, odd.makeLink("loop", "loop")},
        {"link into no folder", &Places::settingsFile, odd.makeLink("link", "missing/x.json")},
    };
    const auto filesBefore = listDirectory(odd.path()).size();
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        Installation installation;
        installation.folder.write("settings.json", R"({"a":1})");
        const std::string settings = installation.places.settingsFile;
        installation.places.*row.place = row.path;
        const auto result = HookInstaller::install(installation.places, now);
        ASSERT_FALSE(result);
        EXPECT_THAT(installErrorText(result.error()), StartsWith(odd.path()));
        EXPECT_EQ(contentsOf(settings), R"({"a":1})");
    }
    EXPECT_EQ(listDirectory(odd.path()).size(), filesBefore);
}

TEST(HookProgram, mustHaveComeWithTheApplication) {
    Installation installation;
    for (const auto& bundled :
         {std::optional<std::string>(), std::optional<std::string>("/gone")}) {
        installation.places.bundledHook = bundled;
        const auto result = HookInstaller::install(installation.places, now);
        ASSERT_FALSE(result);
        EXPECT_TRUE(std::holds_alternative<HookBinaryMissing>(result.error()));
        EXPECT_FALSE(inspectFile(installation.places.settingsFile));
    }
}

}  // namespace
}  // namespace fleetwise::testing
