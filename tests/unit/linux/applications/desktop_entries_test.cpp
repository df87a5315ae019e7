#include "platform/linux/applications/desktop_entries.h"

#include "platform/linux/system/environment.h"

#include "linux_tree.h"

#include <gtest/gtest.h>

namespace lumetry::test {
namespace {

using Words = std::vector<std::string>;

TEST(DesktopEntry, SplitsItsCommandLikeALauncher) {
    struct Case {
        std::string command;
        Words expected;
    };
    for (const auto& [command, expected] : {
             Case{"gedit %U", {"gedit"}},
             Case{"\"/opt/My App/run\"  --new %f", {"/opt/My App/run", "--new"}},
             Case{R"(sh -c "exec \"\$HOME/app\" 100%%")", {"sh", "-c", "exec \"$HOME/app\" 100%"}},
             Case{"app --file=%f \"\"", {"app", "--file=", ""}},
             Case{"app \"never closed", {"app", "never closed"}},
             Case{"app %", {"app", "%"}},
             Case{"", {}},
         }) {
        EXPECT_EQ(splitCommand(command), expected) << command;
    }
}

TEST(DesktopEntry, IsReadFromItsOwnGroupInTheUsersLanguage) {
    const auto entry = parseDesktopEntry("# a comment\n"
                                         "[Desktop Entry]\n"
                                         "Type=Application\n"
                                         "Name=Files\n"
                                         " Name[de] =  Da\\steien\r\n"
                                         "Name[fr]=Fichiers\n"
                                         "StartupWMClass=Nautilus\n"
                                         "NoDisplay=true\n"
                                         "Exec=nautilus --new-window %U\n"
                                         "[Desktop Action window]\n"
                                         "Name=New Window\n"
                                         "Exec=other\n",
                                         {"de_AT", "de"});
    ASSERT_TRUE(entry);
    EXPECT_EQ(entry->name, "Da teien");
    EXPECT_EQ(entry->command, (Words{"nautilus", "--new-window"}));
    EXPECT_EQ(entry->windowClass, "Nautilus");
    EXPECT_FALSE(entry->visible);

    EXPECT_FALSE(parseDesktopEntry("[Desktop Entry]\nType=Link\nName=x\n", {}));
    EXPECT_FALSE(parseDesktopEntry("", {}));
    EXPECT_EQ(parseDesktopEntry("[Desktop Entry]\nType=Application\nName=Caf\xE9\n", {})->name,
              "Caf\xEF\xBF\xBD");
}

TEST(DesktopEntry, LanguagesAreThoseOfTheLocale) {
    EXPECT_EQ(languagesOfLocale("de_AT.UTF-8@euro"),
              (Words{"de_AT@euro", "de_AT", "de@euro", "de"}));
    EXPECT_EQ(languagesOfLocale("pt_BR"), (Words{"pt_BR", "pt"}));
    EXPECT_EQ(languagesOfLocale("eo.UTF-8"), Words{"eo"});
    EXPECT_EQ(languagesOfLocale("C.UTF-8"), Words{});
    EXPECT_EQ(languagesOfLocale(""), Words{});
}

TEST(DesktopEntries, OfTheUserComeBeforeThoseOfTheSystem) {
    const LinuxTree tree;
    tree.entry("editor", "Name=Editor");
    tree.entry("kde4/player", "Name=Player");
    tree.entry("removed", "Name=Removed");
    tree.write("share/applications/readme.txt", "[Desktop Entry]\nType=Application\nName=No");
    tree.write("home/applications/editor.desktop",
               "[Desktop Entry]\nType=Application\nName=My Editor");
    tree.write("home/applications/removed.desktop", "[Desktop Entry]\nHidden=true");
    DesktopEntries entries(tree.places().dataFolders, {});

    ASSERT_TRUE(entries.refresh());
    ASSERT_NE(entries.find("editor"), nullptr);
    EXPECT_EQ(entries.find("editor")->name, "My Editor");
    EXPECT_NE(entries.find("kde4-player"), nullptr);
    EXPECT_EQ(entries.find("removed"), nullptr);
    EXPECT_EQ(entries.all().size(), 2);
    EXPECT_EQ(entries.idOf(tree.at("share/applications/kde4/player.desktop")), "kde4-player");
    EXPECT_EQ(entries.idOf("/elsewhere/thing.desktop"), "thing");

    EXPECT_FALSE(entries.refresh()) << "nothing has changed";
    tree.entry("kde4/later", "Name=Later");
    EXPECT_TRUE(entries.refresh());
    EXPECT_NE(entries.find("kde4-later"), nullptr);
}

} // namespace
} // namespace lumetry::test
