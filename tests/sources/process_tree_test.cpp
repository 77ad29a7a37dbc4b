#include "sources/process_tree.h"

#include "sources/desktop_entry.h"
#include "support/fake_process_table.h"
#include "support/temporary_directory.h"

#include <gmock/gmock.h>

namespace fleetwise::testing {
namespace {

TEST(HostApplications, knowTerminalsAndEditorsByTheirProgram) {
    const struct {
        const char* executable;
        const char* bundleId;  ///< empty: not known
    } rows[] = {
        {"/usr/libexec/gnome-terminal-server", "org.gnome.Terminal"},
        {"/usr/bin/konsole (deleted)", "org.kde.konsole"},
        {"/opt/idea/bin/idea", "jetbrains-idea"},
        {"/opt/pycharm-2026.2/jbr/bin/java", "jetbrains-pycharm"},
        {"/snap/intellij-idea-ultimate/500/jbr/bin/java", "jetbrains-idea"},
        {"/home/dev/Toolbox/apps/WebStorm/ch-0/jbr/bin/java", "jetbrains-webstorm"},
        {"/usr/lib/jvm/java-21/bin/java", ""},
        {"/opt/code/bin/bash", ""},
        {"/usr/bin/codec", ""},
        {"", ""},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.executable);
        const auto host = HostApplications::ofExecutable(row.executable);
        EXPECT_EQ(host ? host->bundleId : "", row.bundleId);
    }
}

TEST(HostApplications, readTheIdOutOfAUnit) {
    const struct {
        std::string unit;
        std::optional<std::string> id;
    } rows[] = {
        {"app-gnome-org.gnome.Terminal-4711.scope", "org.gnome.Terminal"},
        {"app-org.kde.konsole-4711.scope", "org.kde.konsole"},
        {"app-gnome\\x2dcustom-12.scope", "gnome-custom"},
        {"app-org.kde.konsole@8d2cf0.service", "org.kde.konsole"},
        {"app-KDE-my\\x2deditor@autostart.service", "my-editor"},
        {"session-2.scope", std::nullopt},
        {"app-4711.scope", std::nullopt},
        {"app-a-b.slice", std::nullopt},
        {"app--4711.scope", std::nullopt},
        {"app-bad\\x2-1.scope", std::nullopt},
        {"app-bad\\x+f-1.scope", std::nullopt},
        {"app-\\x2e\\x2e\\x2fetc\\x2fevil-1.scope", std::nullopt},
        {"app-bell\\x07-1.scope", std::nullopt},
        {"app-nul\\x00-1.scope", std::nullopt},
        {"app-", std::nullopt},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.unit);
        EXPECT_EQ(HostApplications::idOfUnit(row.unit), row.id);
    }
}

TEST(DesktopEntry, searchesTheFoldersOfTheEnvironment) {
    const std::map<std::string, std::string> environment{
        {"XDG_DATA_HOME", "relative/is/ignored"},
        {"XDG_DATA_DIRS", "/opt/share::/usr/share:relative:/opt/share"}};
    const auto lookup = [&](const std::string& name) -> std::optional<std::string> {
        const auto found = environment.find(name);
        return found == environment.end() ? std::nullopt : std::optional(found->second);
    };
    EXPECT_THAT(DesktopEntry::applicationFolders("/home/dev", lookup),
                ::testing::ElementsAre("/home/dev/.local/share/flatpak/exports/share/applications",
                                       "/opt/share/applications", "/usr/share/applications",
                                       "/var/lib/flatpak/exports/share/applications",
                                       "/var/lib/snapd/desktop/applications"));
    const auto defaults =
        DesktopEntry::applicationFolders("/home/dev", [](auto&) { return std::nullopt; });
    EXPECT_EQ(defaults.front(), "/home/dev/.local/share/applications");
    EXPECT_THAT(defaults, ::testing::IsSupersetOf(
                              {"/usr/local/share/applications", "/usr/share/applications"}));
}

TEST(DesktopEntry, readsTheUnlocalisedNameOfTheMainGroup) {
    const TemporaryDirectory folder;
    const struct {
        const char* name;
        std::string contents;
        std::optional<std::string> expected;
    } rows[] = {
        {"localised first", "[Desktop Entry]\nName[de]=Ein Editor\nName=An Editor\n", "An Editor"},
        {"blanks and CRLF", "# x\r\n[Desktop Entry]\r\nName = An Editor \r\n", "An Editor"},
        {"action only", "[Desktop Action new]\nName=New Window\n", std::nullopt},
        {"action behind", "[Desktop Entry]\nIcon=x\n[Desktop Action new]\nName=New\n",
         std::nullopt},
        {"empty name", "[Desktop Entry]\nName=\n", std::nullopt},
        {"bad bytes", "[Desktop Entry]\nName=\xff\x1b[31m", "\uFFFD [31m"},
        {"too large", "[Desktop Entry]\nName=x\n" + std::string(300'000, '#'), std::nullopt},
        {"empty file", "", std::nullopt},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        folder.write("editor.desktop", row.contents);
        EXPECT_EQ(DesktopEntry::nameOf("editor", {folder.path()}), row.expected);
    }
    folder.makeFifo("fifo.desktop");
    EXPECT_EQ(DesktopEntry::nameOf("fifo", {folder.path()}), std::nullopt);
    EXPECT_EQ(DesktopEntry::nameOf("../etc/editor", {folder.path()}), std::nullopt);
}

class ProcessTreeTest : public ::testing::Test {
protected:
    /// bash (20) in a terminal (10); the agents are 30 and up.
    ProcessTreeTest() {
        machine.processes[10] = {.executable = "/usr/bin/konsole"};
        machine.processes[20] = {.parent = 10, .executable = "/bin/bash"};
        machine.processes[30] = {.parent = 20, .executable = "/opt/agent/cursor"};
    }

    std::optional<std::string> hostOf(std::int32_t pid) {
        const auto host = tree.guiAncestor(pid);
        return host ? std::optional(host->bundleId) : std::nullopt;
    }

    TemporaryDirectory applications;
    FakeProcessTable machine;
    ProcessTree tree{machine, {applications.path()}};
};

TEST_F(ProcessTreeTest, findsTheNearestKnownAncestorAndNeverTheAgentItself) {
    EXPECT_EQ(tree.guiAncestor(30), (HostApplication{"Konsole", "org.kde.konsole"}));
    machine.processes[21] = {.parent = 20, .executable = "/usr/share/code/code"};
    machine.processes[31] = {.parent = 21, .executable = "/usr/bin/node"};
    EXPECT_EQ(hostOf(31), "code");
    EXPECT_EQ(hostOf(10), std::nullopt);
    EXPECT_EQ(hostOf(99), std::nullopt);
}

TEST_F(ProcessTreeTest, namesTheApplicationAfterItsDesktopFile) {
    // As a package format exports it: the desktop file is a link.
    const TemporaryDirectory package;
    applications.makeLink(
        "org.kde.konsole.desktop",
        package.write("exported", "[Desktop Entry]\nName=Terminal of the Desktop\n"));
    EXPECT_EQ(tree.guiAncestor(30)->name, "Terminal of the Desktop");
    applications.write("my-editor.desktop", "[Desktop Entry]\nName=My Editor\n");
    machine.processes[40] = {.executable = "/x", .scope = "app-KDE-my\\x2deditor-7.scope"};
    EXPECT_EQ(tree.guiAncestor(40), (HostApplication{"My Editor", "my-editor"}));
}

TEST_F(ProcessTreeTest, prefersAKnownAncestorToTheScope) {
    machine.processes[10].scope = machine.processes[30].scope = "app-org.other.App-1.scope";
    EXPECT_EQ(hostOf(30), "org.kde.konsole");
    machine.processes[11] = {.executable = "/usr/bin/unknown",
                             .scope = "app-org.other.App-1.scope"};
    machine.processes[41] = {
        .parent = 11, .executable = "/bin/agent", .scope = "vte-spawn-1.scope"};
    EXPECT_EQ(tree.guiAncestor(41), (HostApplication{"org.other.App", "org.other.App"}));
}

TEST_F(ProcessTreeTest, endsWhereParentsFormACircle) {
    machine.processes[50] = {.parent = 51, .executable = "/bin/a"};
    machine.processes[51] = {.parent = 50, .executable = "/bin/b"};
    machine.processes[52] = {.parent = 52};
    EXPECT_EQ(hostOf(50), std::nullopt);
    EXPECT_EQ(hostOf(52), std::nullopt);
}

TEST_F(ProcessTreeTest, findsOutOncePerProcess) {
    machine.processes[60] = {.executable = "/bin/agent"};
    EXPECT_EQ(hostOf(30), "org.kde.konsole");
    EXPECT_EQ(hostOf(60), std::nullopt);
    // The shell moves elsewhere: what was found out stays, for this very process only.
    machine.processes[20].parent = machine.processes[60].parent = 11;
    machine.processes[11] = {.executable = "/usr/bin/kitty"};
    EXPECT_EQ(hostOf(30), "org.kde.konsole");
    EXPECT_EQ(hostOf(60), std::nullopt);

    machine.processes[30].start = 2;
    EXPECT_EQ(hostOf(30), "kitty") << "the id was given to another process";
    tree.forgetAllBut({30});
    EXPECT_EQ(hostOf(60), "kitty");
    machine.processes.erase(60);
    EXPECT_EQ(hostOf(60), std::nullopt);
}

}  // namespace
}  // namespace fleetwise::testing
