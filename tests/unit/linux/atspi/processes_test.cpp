#include "platform/linux/atspi/tree/processes.h"

#include "atspi_test.h"

#include <filesystem>
#include <fstream>
#include <string>

namespace lumetry::test {
namespace {

// To the bus a sandboxed application is the process that passes its messages on, to the screen it
// is itself.
TEST_F(AtspiTest, ApplicationsInSandboxesAreFoundThroughTheirProxies) {
    auto& proxy = start(windowWith(object("window", {0, 0, 9, 9})));
    const std::filesystem::path folder = bus.folder() / "proc";
    const auto describe = [&](pid_t pid, const std::string& name, const std::string& group) {
        const auto process = folder / std::to_string(pid);
        std::filesystem::create_directories(process);
        std::ofstream(process / "comm") << name << "\n";
        std::ofstream(process / "cgroup") << "0::/user.slice/" << group << "\n";
    };
    constexpr pid_t inside = 1001;
    constexpr pid_t elsewhere = 1002;
    describe(inside, "editor", "app-flatpak-org.example.Editor-1.scope");
    describe(elsewhere, "viewer", "app-flatpak-org.example.Viewer-2.scope");
    const auto found = [&](pid_t pid) {
        atspi::Bus fresh(loop);
        atspi::Processes processes(fresh, folder);
        return processes.rootsOf(pid, atspi::deadlineIn(30)).size();
    };

    describe(proxy.pid(), "xdg-dbus-proxy", "app-flatpak-org.example.Editor-1.scope");
    EXPECT_EQ(found(inside), 1);
    EXPECT_EQ(found(elsewhere), 0);

    describe(proxy.pid(), "editor", "app-flatpak-org.example.Editor-1.scope");
    EXPECT_EQ(found(inside), 0) << "no proxy, only started from there";
    EXPECT_EQ(found(proxy.pid()), 1);

    describe(inside, "editor", "session-1.scope");
    describe(proxy.pid(), "xdg-dbus-proxy", "session-1.scope");
    EXPECT_EQ(found(inside), 0) << "everything is in that group";
}

} // namespace
} // namespace lumetry::test
