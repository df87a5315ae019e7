#include "platform/linux/atspi/atspi_accessibility.h"

#include "platform/ax_value.h"
#include "support/real_desktop/accessible_tree.h"
#include "support/real_desktop/chromium.h"
#include "support/real_desktop/desktop_windows.h"
#include "support/real_desktop/private_desktop.h"

#include <gtest/gtest.h>
#include <poll.h>

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
using desktop::waitUntil;

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

/// Watches descriptors when told to.
class PolledLoop final : public FileDescriptorWatcher {
public:
    [[nodiscard]] Token watchReadable(int fileDescriptor, std::function<void()> handler) override {
        descriptor_ = fileDescriptor;
        handler_ = std::move(handler);
        return Token([this] { handler_ = nullptr; });
    }
    void turn() {
        pollfd readable{descriptor_, POLLIN, 0};
        if (handler_ && poll(&readable, 1, 0) > 0) {
            const auto handler = handler_;
            handler();
        }
    }

private:
    int descriptor_ = -1;
    std::function<void()> handler_;
};

class RealApplications : public ::testing::Test {
protected:
    RealApplications() { privateDesktop.join(); }

    [[nodiscard]] std::optional<AXUIElement> hit(pid_t pid, Point at) {
        const AXUIElement application = accessibility.createApplication(pid);
        application.setMessagingTimeout(hitTestTimeoutSeconds);
        return application.copyElementAtPosition(static_cast<float>(at.x),
                                                 static_cast<float>(at.y));
    }
    [[nodiscard]] static std::string text(const AXUIElement& element, const char* attribute) {
        const auto value = element.copyAttributeValue(attribute);
        return value ? value->as<std::string>().value_or("not text") : "absent";
    }
    [[nodiscard]] static std::optional<Rect> frame(const AXUIElement& element) {
        const auto position = element.copyAttributeValue("AXPosition");
        const auto size = element.copyAttributeValue("AXSize");
        if (!position || !size) {
            return std::nullopt;
        }
        const auto origin = position->as<Point>().value_or(Point());
        const auto extent = size->as<Size>().value_or(Size());
        return Rect{origin.x, origin.y, extent.width, extent.height};
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
    void expectHit(pid_t pid, const Accessible& expected, const std::string& role) {
        const auto found = hit(pid, centre(expected));
        ASSERT_TRUE(found) << expected.name();
        expectIs(*found, pid, expected, role);
    }
    static void expectIs(const AXUIElement& found, pid_t pid, const Accessible& expected,
                         const std::string& role) {
        EXPECT_EQ(text(found, "AXTitle"), expected.name());
        EXPECT_EQ(text(found, "AXRole"), role) << expected.name();
        EXPECT_EQ(frame(found), expected.extents()) << expected.name();
        EXPECT_EQ(found.getPid(), pid);
    }

    static constexpr float hitTestTimeoutSeconds = 0.35F;

    PrivateDesktop privateDesktop;
    desktop::AccessibleTree tree{privateDesktop.accessibilityBusAddress()};
    StartedWindows windows{privateDesktop.server()};
    PolledLoop loop;
    AtspiAccessibility accessibility{windows, loop};
};

class WidgetFactory : public RealApplications {
protected:
    WidgetFactory() : application(privateDesktop.start({"gtk3-widget-factory"})) {
        windows.add("Gtk3-widget-factory", application.pid());
        desktop::waitForWindow(privateDesktop.server(), desktop::hasClass("Gtk3-widget-factory"));
        root = tree.waitForApplication("gtk3-widget-factory");
    }

    [[nodiscard]] Accessible shown(const std::string& role, const std::string& name = "") {
        return tree.waitFor("gtk3-widget-factory", role, name);
    }

    ChildProcess application;
    std::optional<Accessible> root;
};

TEST_F(WidgetFactory, WhatLiesOverTheWindowIsHit) {
    // A drop-down is a window of its own that no list of windows names.
    click(shown("combo box", "Left"));
    expectHit(application.pid(), shown("menu item", "Middle"), "AXMenuItem");
    privateDesktop.input().typeKey(0xFF1B);

    // A popover is drawn into the window, over widgets that would answer, too.
    click(shown("toggle button", "Menu"));
    expectHit(application.pid(), shown("check box", "Dark Theme"), "AXCheckBox");
}

constexpr const char* page = R"(<!DOCTYPE html><title>Page</title>
<style>body { margin: 0; font: 16px sans-serif } h1, button, select { margin: 20px; }
option { height: 30px }</style>
<h1>Heading</h1><button>Press</button><select><option>One<option>Two<option>Three</select>)";

class Chromium : public RealApplications {
protected:
    Chromium() : application(desktop::startChromiumWith(privateDesktop, page)) {
        windows.add("Chromium", application.pid());
        // Menus of its pages have no class of their own.
        windows.add("", application.pid());
        (void)tree.waitForApplication("Chromium");
    }

    ChildProcess application;
};

TEST_F(Chromium, ItsPagesAwakeWhenToldTo) {
    const pid_t pid = application.pid();
    const AXUIElement root = accessibility.createApplication(pid);
    const auto window = waitUntil([&] { return hit(pid, {60, 40}); });
    ASSERT_TRUE(window);
    EXPECT_EQ(text(*window, "AXRole"), "AXWindow") << "asleep";

    root.setAttributeValue("AXManualAccessibility", true);
    EXPECT_TRUE(waitUntil([&] {
        loop.turn();
        const auto found = hit(pid, {60, 40});
        return found && text(*found, "AXTitle") == "Heading";
    }));
    const Accessible button = tree.waitFor("Chromium", "push button", "Press");
    const auto label = hit(pid, centre(button));
    ASSERT_TRUE(label);
    EXPECT_EQ(text(*label, "AXValue"), "Press");
    const auto parent = label->copyAttributeValue("AXParent");
    ASSERT_TRUE(parent);
    expectIs(parent->as<AXUIElement>().value(), pid, button, "AXButton");

    // From the blank of the page to the heading: the last hit test's answer covers that, too.
    ASSERT_EQ(text(hit(pid, {900, 600}).value(), "AXRole"), "AXWebArea");
    EXPECT_EQ(text(hit(pid, {60, 40}).value(), "AXTitle"), "Heading");

    const Accessible select = tree.waitFor("Chromium", "combo box", "");
    ASSERT_EQ(text(hit(pid, centre(select)).value(), "AXRole"), "AXPopUpButton") << "shut";
    click(select);
    const Accessible option = tree.waitFor("Chromium", "menu item", "Two");
    EXPECT_TRUE(waitUntil([&] {
        const auto found = hit(pid, centre(option));
        return found && text(*found, "AXTitle") == "Two";
    }));
}

} // namespace
} // namespace lumetry
