#pragma once

#include "scripted_application.h"

#include "platform/ax_value.h"
#include "platform/linux/atspi/accessibility.h"
#include "support/fake_linux/fixed_windows.h"
#include "support/fake_linux/poll_loop.h"

#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace lumetry::test {

/// One or more scripted applications on a bus, and the backend under test.
class AtspiTest : public ::testing::Test {
protected:
    void TearDown() override {
        for (const auto& application : applications) {
            EXPECT_EQ(application->faults(), 0) << "asked what is not an object's to answer";
        }
    }

    /// Starts an application and tells the registry of it.
    ScriptedApplication& start(ScriptedTree tree) {
        applications.push_back(std::make_unique<ScriptedApplication>(bus, std::move(tree)));
        announce();
        return *applications.back();
    }

    /// Has the registry list all applications started so far.
    void announce(bool enabled = true) {
        std::vector<Reference> roots;
        for (const auto& application : applications) {
            roots.push_back(application->root());
        }
        registry.reset();
        registry = std::make_unique<ScriptedApplication>(bus, registryTree(roots, enabled),
                                                         registryNames());
    }

    /// The only window of an application, over the whole of a small screen.
    void showWindow(const ScriptedApplication& application, bool popup = false) {
        windows.windows.push_back({static_cast<std::uint32_t>(windows.windows.size() + 1),
                                   application.pid(), Rect{0, 0, 800, 600}, popup});
    }

    [[nodiscard]] std::optional<AXUIElement> hit(const ScriptedApplication& application, float x,
                                                 float y) {
        return accessibility->createApplication(application.pid()).copyElementAtPosition(x, y);
    }

    /// The title of the element there; "-" where there is none.
    [[nodiscard]] std::string titleAt(const ScriptedApplication& application, float x, float y) {
        const auto element = hit(application, x, y);
        const auto title = element ? element->copyAttributeValue("AXTitle") : std::nullopt;
        return title ? title->as<std::string>().value_or("not text") : "-";
    }

    PrivateBus bus;
    std::vector<std::unique_ptr<ScriptedApplication>> applications;
    std::unique_ptr<ScriptedApplication> registry;
    FixedWindows windows;
    PollLoop loop;
    std::unique_ptr<AtspiAccessibility> accessibility =
        std::make_unique<AtspiAccessibility>(windows, loop);
};

/// An object with a name and a place.
[[nodiscard]] inline ScriptedObject object(std::string name, std::array<std::int32_t, 4> extents,
                                           std::vector<std::string> children = {}) {
    ScriptedObject made;
    made.name = std::move(name);
    made.extents = extents;
    for (std::string& path : children) {
        made.children.push_back({"", std::move(path)});
    }
    return made;
}

[[nodiscard]] inline ScriptedObject hidden(ScriptedObject object) {
    object.states = 0;
    return object;
}

/// An application with one window that holds those objects.
[[nodiscard]] inline ScriptedTree windowWith(ScriptedObject window, ScriptedTree others = {},
                                             const std::string& toolkit = "other") {
    ScriptedTree tree = std::move(others);
    tree["/window"] = std::move(window);
    tree["/window"].parent = Reference{"", rootPath};
    ScriptedObject root;
    root.name = "application";
    root.role = 75;
    root.parent = Reference{":1.99999", rootPath}; // the list of all applications
    root.children = {{"", "/window"}};
    root.answers["ToolkitName"] = text(toolkit);
    tree[rootPath] = root;
    for (auto& [path, each] : tree) {
        each.lenientAboutText = toolkit == "gtk" || toolkit == "Chromium";
        each.knowsOnlyItsWindow = toolkit == "GTK";
    }
    return tree;
}

} // namespace lumetry::test
