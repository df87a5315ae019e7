#include "platform/linux/atspi/accessibility.h"

#include "platform/ax_value.h"
#include "rig/accessible_tree.h"
#include "rig/desktop_windows.h"
#include "rig/private_desktop.h"

#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace lumetry {
namespace {

using desktop::Accessible;
using desktop::ChildProcess;
using desktop::PrivateDesktop;

/// The windows of the processes that a test has started, as the X server has them.
class StartedWindows final : public DesktopWindows {
public:
    explicit StartedWindows(const desktop::XConnection& server) : server_(server) {}

    /// @param className by which the process's windows are told
    void add(std::string className, pid_t pid) { pids_[std::move(className)] = pid; }

    [[nodiscard]] RootSpace rootSpace() override { return {}; }
    [[nodiscard]] std::optional<DesktopWindow> windowAt(Point point,
                                                        std::optional<pid_t> pid) override {
        std::optional<DesktopWindow> found;
        for (const desktop::DesktopWindow& window : desktop::desktopWindows(server_)) {
            const auto owner = pids_.find(window.className);
            const bool wanted = owner != pids_.end() && (!pid || owner->second == *pid);
            // Popups lie over everything; of two windows of one process tests hide one.
            if (wanted && window.bounds.contains(point) && (!found || window.overrideRedirect)) {
                found =
                    DesktopWindow{window.id, owner->second, window.bounds, window.overrideRedirect};
            }
        }
        return found;
    }
    [[nodiscard]] ProcessWindows windowsOf(pid_t /*pid*/) override { return {}; }

private:
    const desktop::XConnection& server_;
    std::map<std::string, pid_t> pids_;
};

/// Nothing is sent here without waiting for the answer.
class NoLoop final : public FileDescriptorWatcher {
public:
    [[nodiscard]] Token watchReadable(int /*fileDescriptor*/,
                                      std::function<void()> /*handler*/) override {
        return Token([] {});
    }
};

class WidgetFactory : public ::testing::Test {
protected:
    WidgetFactory() : application(privateDesktop.start({"gtk3-widget-factory"})) {
        privateDesktop.join();
        windows.add("Gtk3-widget-factory", application.pid());
        desktop::waitForWindow(privateDesktop.server(), desktop::hasClass("Gtk3-widget-factory"));
    }

    [[nodiscard]] Accessible shown(const std::string& role, const std::string& name) {
        return tree.waitFor("gtk3-widget-factory", role, name);
    }
    [[nodiscard]] static Point centre(const Accessible& element) {
        const Rect place = element.extents().value_or(Rect());
        return {place.midX(), place.midY()};
    }
    void click(const Accessible& element) {
        const Point at = centre(element);
        privateDesktop.input().movePointer(static_cast<int>(at.x), static_cast<int>(at.y));
        privateDesktop.input().click();
    }
    /// Hits the middle of an element and compares what is found with it.
    void expectHit(const Accessible& expected, const std::string& role) {
        const Point at = centre(expected);
        const auto found =
            accessibility.createApplication(application.pid())
                .copyElementAtPosition(static_cast<float>(at.x), static_cast<float>(at.y));
        ASSERT_TRUE(found);
        const auto text = [&](const char* attribute) {
            const auto value = found->copyAttributeValue(attribute);
            return value ? value->as<std::string>().value_or("not text") : "absent";
        };
        EXPECT_EQ(text("AXTitle"), expected.name());
        EXPECT_EQ(text("AXRole"), role) << expected.name();
        const auto size = found->copyAttributeValue("AXSize");
        ASSERT_TRUE(size);
        EXPECT_EQ(size->as<Size>(), expected.extents()->size()) << expected.name();
        EXPECT_EQ(found->getPid(), application.pid());
    }

    PrivateDesktop privateDesktop;
    ChildProcess application;
    desktop::AccessibleTree tree{privateDesktop.accessibilityBusAddress()};
    StartedWindows windows{privateDesktop.server()};
    NoLoop loop;
    AtspiAccessibility accessibility{windows, loop};
};

TEST_F(WidgetFactory, WhatLiesOverTheWindowIsHit) {
    // A drop-down is a window of its own that no list of windows names.
    click(shown("combo box", "Left"));
    expectHit(shown("menu item", "Middle"), "AXMenuItem");
    privateDesktop.input().typeKey(0xFF1B);

    // A popover is drawn into the window, over widgets that would answer, too.
    click(shown("toggle button", "Menu"));
    expectHit(shown("check box", "Dark Theme"), "AXCheckBox");
}

} // namespace
} // namespace lumetry
