#include "inspected_desktop.h"

#include "rig/desktop_windows.h"

#include <gtest/gtest.h>

#include <chrono>
#include <ostream>
#include <string>
#include <vector>

namespace lumetry::desktop {
namespace {

/// A program whose toolkit ends it, or at least says something, when it is asked what is not its to
/// answer.
struct Touchy {
    const char* name;
    std::vector<std::string> command;
    Environment variables;
    WindowPredicate isWindow;
    const char* element; ///< what is to be named on the way, among others

    friend std::ostream& operator<<(std::ostream& out, const Touchy& touchy) {
        return out << touchy.name;
    }
};

class LeavesNoTrace : public testing::TestWithParam<Touchy> {};

TEST_P(LeavesNoTrace, InTheLogOfTheMeasuredProgram) {
    const Touchy& touchy = GetParam();
    InspectedDesktop inspected;
    PrivateDesktop& desktop = inspected.desktop;
    auto application = desktop.start(touchy.command, touchy.variables);
    const auto window = waitForWindow(desktop.server(), touchy.isWindow);
    placeWindow(desktop.server(), window.id, {0, 0, window.bounds.width, window.bounds.height});
    auto lumetry = inspected.startLumetry();
    const std::string before = application.standardError();

    constexpr int lines = 12;
    bool named = false;
    for (int place = 0; place < lines * lines; ++place) {
        desktop.input().glidePointer(
            static_cast<int>(window.bounds.width) * (2 * (place % lines) + 1) / (2 * lines),
            static_cast<int>(window.bounds.height) * (2 * (place / lines) + 1) / (2 * lines), 2,
            std::chrono::milliseconds(30));
        const auto shown = inspected.overlay.readout();
        named = named || (shown && shown->header.starts_with(touchy.element));
    }
    EXPECT_TRUE(named) << "nothing of it was measured";
    EXPECT_TRUE(application.running());
    EXPECT_EQ(application.standardError(), before);
    EXPECT_TRUE(lumetry.running());
}

INSTANTIATE_TEST_SUITE_P(Toolkits, LeavesNoTrace,
                         testing::Values(Touchy{"Gtk3",
                                                {"gtk3-widget-factory"},
                                                {{"G_DEBUG", "fatal-criticals"}},
                                                hasClass("Gtk3-widget-factory"),
                                                "CheckBox"},
                                         Touchy{"Gtk4",
                                                {"gtk4-demo"},
                                                {{"GSK_RENDERER", "cairo"}},
                                                hasTitle("GTK Demo"),
                                                "StaticText"},
                                         Touchy{"Qt",
                                                {LUMETRY_QT_FORM},
                                                {{"QT_FATAL_WARNINGS", "1"}},
                                                hasTitle("Qt form"),
                                                "TextArea"}),
                         [](const auto& test) { return test.param.name; });

} // namespace
} // namespace lumetry::desktop
