#include "platform/linux/applications/applications.h"

#include "linux_tree.h"
#include "platform/linux/system/file_system.h"
#include "probe/electron.h"
#include "support/fake_linux/fixed_windows.h"
#include "support/fake_platform/fake_desktop.h"

#include <gtest/gtest.h>

#include <functional>

namespace lumetry::test {
namespace {

class RunningApplications : public ::testing::Test {
protected:
    [[nodiscard]] std::string identify(pid_t pid = 100) {
        const auto application = applications.runningApplication(pid);
        return application ? application->bundleIdentifier.value_or("none") : "no process";
    }

    LinuxTree tree;
    FixedWindows windows;
    LinuxApplications applications{windows, tree.places()};
};

TEST_F(RunningApplications, AreIdentifiedByWhatIsSurest) {
    struct Case {
        std::string name;
        /// Makes what is installed, and describes the process.
        std::function<void(FakeProcess&)> install;
        std::vector<std::string> windowClasses;
        std::string expected;
    };
    const std::vector<Case> cases = {
        {"its program",
         [&](auto& process) {
             process.executable = tree.program("bin/paint");
             tree.entry("org.paint.Paint", "Exec=paint %U");
         },
         {},
         "org.paint.Paint"},
        {"its program behind links",
         [&](auto& process) {
             process.executable = tree.program("lib/office/program/office.bin");
             std::filesystem::create_symlink(process.executable, tree.at("bin/office"));
             tree.entry("office", "Exec=office");
         },
         {},
         "office"},
        {"a script in the program's own folder",
         [&](auto& process) {
             process.executable = tree.program("opt/vendor/browser/browser-bin");
             (void)tree.program("opt/vendor/browser/start-browser", "#!/bin/sh\n");
             std::filesystem::create_symlink(tree.at("opt/vendor/browser/start-browser"),
                                             tree.at("bin/browser-stable"));
             tree.entry("vendor-browser", "Exec=browser-stable %U");
         },
         {},
         "vendor-browser"},
        {"a script elsewhere of the program's name",
         [&](auto& process) {
             process.executable = tree.program("lib/chat/chat");
             (void)tree.program("bin/chat", "#!/bin/sh\n");
             tree.entry("chat", "Exec=chat");
         },
         {},
         "chat"},
        {"not another program of the same folder",
         [&](auto& process) {
             process.executable = tree.program("opt/suite/writer");
             tree.entry("calc", "Exec=" + tree.program("opt/suite/calc").string());
         },
         {},
         "none"},
        {"not another script among the system's programs",
         [&](auto& process) {
             process.executable = tree.program("bin/plain");
             (void)tree.program("bin/script", "#!/bin/sh\n");
             tree.entry("script", "Exec=script");
         },
         {},
         "none"},
        {"the script that an interpreter runs",
         [&](auto& process) {
             process.executable = tree.program("bin/python3.11");
             const auto script = tree.program("bin/notes", "#!/usr/bin/python3\n");
             process.arguments = {"python3", "-u", script.string(), "--quiet"};
             tree.entry("python", "Exec=python3.11");
             tree.entry("notes", "Exec=notes");
         },
         {},
         "notes"},
        {"an interpreter with its script in the entry",
         [&](auto& process) {
             process.executable = tree.program("bin/python3.11");
             tree.write("share/tool/main.py", "");
             process.arguments = {"python3", tree.at("share/tool/main.py").string()};
             tree.entry("tool",
                        "Exec=env LANG=C python3.11 " + tree.at("share/tool/main.py").string());
             (void)tree.program("bin/env");
         },
         {},
         "tool"},
        {"the last command of a shell",
         [&](auto& process) {
             process.executable = tree.program("lib/game/game");
             (void)tree.program("bin/sh");
             tree.entry("game", "Exec=sh -c \"cd /tmp && exec '" +
                                    tree.at("lib/game/game").string() + "' --full\"");
         },
         {},
         "game"},
        {"the entry with the process's arguments",
         [&](auto& process) {
             process.executable = tree.program("bin/suite");
             process.arguments = {"suite", "--writer"};
             tree.entry("suite-calc", "Exec=suite --calc");
             tree.entry("suite-start", "Exec=suite");
             tree.entry("suite-writer", "Exec=suite --writer %U");
         },
         {},
         "suite-writer"},
        {"an entry that is shown rather than one that is not",
         [&](auto& process) {
             process.executable = tree.program("bin/viewer");
             tree.entry("a-handler", "Exec=viewer\nNoDisplay=true");
             tree.entry("viewer", "Exec=viewer");
         },
         {},
         "viewer"},
        {"its window class before its program",
         [&](auto& process) {
             process.executable = tree.program("bin/runtime");
             tree.entry("runtime", "Exec=runtime");
             tree.entry("com.example.App", "Exec=not-installed\nStartupWMClass=example-app");
         },
         {"instance", "example-app"},
         "com.example.App"},
        {"its window class as an id, exactly before loosely",
         [&](auto& process) {
             process.executable = tree.program("bin/x");
             tree.entry("DESIGNER", "");
             tree.entry("designer", "");
         },
         {"", "designer"},
         "designer"},
        {"of entries with its window class one that is shown",
         [&](auto&) {
             tree.entry("a-url-handler", "StartupWMClass=Player\nNoDisplay=true");
             tree.entry("player", "StartupWMClass=Player");
         },
         {"Player"},
         "player"},
        {"its window class in other letters",
         [&](auto& process) {
             process.executable = tree.program("bin/x");
             tree.entry("org.gnome.gedit", "");
         },
         {"gedit", "Org.gnome.Gedit"},
         "org.gnome.gedit"},
        {"the unit that the desktop started it in",
         [&](auto& process) {
             process.executable = tree.program("bin/terminal");
             process.controlGroup = R"(app-gnome-my\x2dterm-4711.scope)";
             tree.entry("my-term", "Exec=something-else");
         },
         {},
         "my-term"},
        {"the service that the desktop started it as",
         [&](auto& process) {
             process.controlGroup = "app-org.kde.konsole@3f2a.service";
             tree.entry("org.kde.konsole", "");
         },
         {},
         "org.kde.konsole"},
        {"not the unit of the program that it was started from",
         [&](auto& process) {
             tree.process({99, "", {}, {}, "app-org.kde.konsole-1.scope"});
             process.parent = 99;
             process.controlGroup = "app-org.kde.konsole-1.scope";
             process.executable = tree.program("bin/paint");
             tree.entry("org.kde.konsole", "");
             tree.entry("paint", "Exec=paint");
         },
         {},
         "paint"},
        {"what GLib launched it by",
         [&](auto& process) {
             process.environment = {"GIO_LAUNCHED_DESKTOP_FILE=" +
                                        tree.at("share/applications/a/b.desktop").string(),
                                    "GIO_LAUNCHED_DESKTOP_FILE_PID=100"};
         },
         {},
         "a-b"},
        {"not what GLib launched another process by",
         [&](auto& process) {
             process.environment = {"GIO_LAUNCHED_DESKTOP_FILE=/x/b.desktop",
                                    "GIO_LAUNCHED_DESKTOP_FILE_PID=99"};
         },
         {},
         "none"},
        {"its Snap's group",
         [&](auto& process) {
             process.controlGroup =
                 "snap.firefox.firefox-12345678-1234-1234-1234-123456789abc.scope";
         },
         {},
         "org.mozilla.firefox"},
        {"its Snap's group with dashes and no unique part",
         [&](auto& process) { process.controlGroup = "snap.my-app.my-app.scope"; },
         {},
         "my-app_my-app"},
        {"its Snap's environment",
         [&](auto& process) {
             process.executable = tree.program("snap/tool/7/bin/tool");
             process.environment = {"SNAP=" + tree.at("snap/tool/7").string(),
                                    "SNAP_INSTANCE_NAME=tool"};
             tree.entry("tool_tool-gui", "");
         },
         {},
         "tool_tool-gui"},
        {"not the Snap that a program was started from",
         [&](auto& process) {
             process.executable = tree.program("bin/paint");
             process.environment = {"SNAP=/snap/code/7", "SNAP_INSTANCE_NAME=code"};
             tree.entry("paint", "Exec=paint");
         },
         {},
         "paint"},
        {"its Flatpak",
         [&](auto& process) {
             process.executable = "/app/bin/thing";
             tree.write("proc/100/root/.flatpak-info",
                        "[Instance]\nname=x\n[Application]\nname=org.example.Thing\n");
         },
         {"other"},
         "org.example.Thing"},
        {"nothing", [](auto& process) { process.executable = "/nowhere/thing"; }, {}, "none"},
    };
    for (const Case& each : cases) {
        tree.clear();
        FakeProcess process;
        each.install(process);
        tree.process(process);
        windows.processes[100].classes = each.windowClasses;
        LinuxApplications fresh(windows, tree.places());
        const auto application = fresh.runningApplication(100);
        ASSERT_TRUE(application) << each.name;
        EXPECT_EQ(application->bundleIdentifier.value_or("none"), each.expected) << each.name;
    }
}

TEST(PackagedBrowsers, AreTakenForBrowsers) {
    FakeDesktop desktop;
    for (const auto& [id, identifier] : packagedBrowsers()) {
        desktop.launch(9, "Browser", commonIdentifier(id));
        EXPECT_TRUE(isBrowser(desktop.platform, 9)) << id << " is " << identifier;
    }
}

TEST(OwnBundle, IsTheOneThatTheProgramIsTheMainOneOf) {
    EXPECT_EQ(bundleOf("/home/me/my.app/Contents/MacOS/lumetry"), "/home/me/my.app");
    for (const char* const program :
         {"/usr/bin/lumetry", "/home/me/my.app/build/lumetry", "/home/me/my.app/lumetry",
          "/my.app/Contents/Resources/lumetry", "/my.app/Contents/MacOS/bin/lumetry",
          "/home/me/Contents/MacOS/lumetry", "/lumetry"}) {
        EXPECT_EQ(bundleOf(program), "") << program;
    }
}

TEST_F(RunningApplications, HaveANameAndAPlace) {
    tree.entry("paint", "Exec=paint\nName=Paint\nName[de]=Malen");
    tree.process({100, tree.program("bin/paint")});
    tree.process({101, tree.program("opt/app/unknown-app")});
    tree.process({102, "/app/bin/thing"});
    tree.write("proc/102/root/.flatpak-info", "[Application]\nname=org.example.Thing\n");
    tree.write("proc/102/root/app/bin/thing", "");
    tree.process({103, ""});

    const auto paint = applications.runningApplication(100);
    ASSERT_TRUE(paint);
    EXPECT_EQ(paint->localizedName, "Malen");
    EXPECT_EQ(paint->bundleLocation, tree.at("bin").string());
    EXPECT_EQ(paint->chromiumLibrary, tree.at("bin/libGLESv2.so").string());

    const auto unknown = applications.runningApplication(101);
    ASSERT_TRUE(unknown);
    EXPECT_EQ(unknown->localizedName, "unknown-app");
    EXPECT_EQ(unknown->bundleIdentifier, std::nullopt);

    EXPECT_EQ(applications.runningApplication(102)->bundleLocation,
              tree.at("proc/102/root/app/bin").string())
        << "a sandbox's files are reached through the process";

    const auto locked = applications.runningApplication(103);
    ASSERT_TRUE(locked) << "another user's";
    EXPECT_EQ(locked->localizedName, "shortname");
    EXPECT_EQ(locked->bundleLocation, std::nullopt);
    EXPECT_EQ(locked->chromiumLibrary, std::nullopt);
}

TEST_F(RunningApplications, ShowThemselvesAsTheirWindowsDo) {
    tree.process({100, "/bin/x"});
    const auto policy = [&](ProcessWindows said) {
        windows.processes[100] = std::move(said);
        return applications.runningApplication(100)->activationPolicy;
    };
    EXPECT_EQ(policy({true, true, {}}), ActivationPolicy::regular);
    EXPECT_EQ(policy({true, false, {}}), ActivationPolicy::accessory);
    EXPECT_EQ(policy({false, false, {}}), ActivationPolicy::prohibited);
}

// Identifiers are asked for on every movement of the pointer.
TEST_F(RunningApplications, AreRememberedUntilSomethingChanges) {
    const auto program = tree.program("bin/paint");
    EXPECT_EQ(identify(), "no process");
    tree.process({100, program});
    EXPECT_EQ(identify(), "none");

    tree.entry("paint", "Exec=paint");
    EXPECT_EQ(identify(), "none") << "the process is known already";
    windows.processes[100].classes = {"paint"};
    EXPECT_EQ(identify(), "paint") << "it has opened a window since";

    tree.process({100, tree.program("lib/other"), {}, {}, "x.scope", 1, "6000"});
    EXPECT_EQ(applications.runningApplication(100)->bundleLocation, tree.at("lib").string())
        << "another process has that number now";

    tree.write("proc/100/stat", "100 (x) Z 1 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 6000 0\n");
    EXPECT_EQ(identify(), "no process") << "it has ended and waits to be collected";
    tree.endProcess(100);
    EXPECT_EQ(identify(), "no process");
}

} // namespace
} // namespace lumetry::test
