#include "session_test.h"

#include "session/inspector.h"
#include "support/pictures/pictures.h"

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace lumetry {
namespace {

const std::vector<GlanceRow> needsAccess = {{"needs", "Screen Recording", {}}};

/// What is found in a window on which two plain boxes are painted.
class InspectorTest : public SessionTest {
protected:
    /// The distances to the last pixel on either side: the pixel they start from is not counted.
    static constexpr Rect upperBox = {300, 250, 119, 31};
    static constexpr Rect lowerBox = {300, 350, 119, 31};
    static constexpr Point onUpper = {350, 260};
    static constexpr Point onLower = {350, 360};

    InspectorTest() {
        page.setFrame(windowBounds);
        Bitmap screen = evenBitmap(1440, 900, 0xFFFFFF);
        fillRect(screen, {300, 250, 120, 32}, 0x1E90FF);
        fillRect(screen, {300, 350, 120, 32}, 0x1E90FF);
        desktop.screenCapture.paint(std::move(screen));
    }

    HoverOutcome look(FakeElement* found, Point at, bool electron = false,
                      const std::optional<WindowHit>& window = WindowHit{pid, windowBounds}) {
        desktop.state.electronPIDCache[pid] = electron;
        for (FakeElement* root :
             {&desktop.accessibility.application(pid), &desktop.accessibility.systemWide()}) {
            root->hitTest = [=](Point) { return found; };
        }
        return inspector.look({0, at, window}, 9);
    }
    /// The box that is still known there, now that the screen cannot be read.
    std::optional<Rect> boxKeptAt(Point at) {
        desktop.screenCapture.refused = true;
        const auto box = look(nullptr, at).box;
        desktop.screenCapture.refused = false;
        return box;
    }

    static std::string nameOf(const std::optional<Rect>& rect) {
        for (const auto& [named, name] : {std::pair(buttonFrame, "button"),
                                          {fieldFrame, "field"},
                                          {windowBounds, "window"},
                                          {upperBox, "upper"},
                                          {lowerBox, "lower"}}) {
            if (rect == named) {
                return name;
            }
        }
        return rect ? testing::PrintToString(*rect) : "-";
    }
    /// "header (labels of the rows) box", and whether the live colour is wanted.
    static std::string inWords(const HoverOutcome& outcome) {
        std::string labels;
        for (const GlanceRow& row : outcome.rows) {
            labels += (labels.empty() ? "" : " ") + row.label;
        }
        return outcome.header + " (" + labels + ") " + nameOf(outcome.box) +
               (outcome.liveColor ? ", live" : "");
    }

    FakeElement& page = desktop.accessibility.makeElement(pid, "AXWebArea");
    FakeElement& frameless = desktop.accessibility.makeElement(pid, "AXGroup");
    Inspector inspector{desktop.platform, desktop.state};
};

TEST_F(InspectorTest, EveryPathSaysWhatItFoundAndRemembersIt) {
    struct Case {
        const char* path;
        FakeElement* found;
        Point at;
        const char* told;
        const char* remembered;
    };
    for (const auto& [path, found, at, told, remembered] : {
             Case{"AX-real", &field, onField, "TextField · Hello (size fill) field", "field"},
             Case{"AX-coarse-shown", &page, onWindow, "WebArea (size) window", "window"},
             Case{"coarse→pixel", &page, onLower, "≈ element (size) lower, live",
                  "lower, lower box"},
             Case{"pixel-only(AX-nil)", nullptr, onLower, "≈ element (size) lower, live",
                  "-, lower box"},
             Case{"AX-nil+pixel-nil", nullptr, onWindow, " () -", "-"},
             Case{"needs-SR", nullptr, onLower, "no screen access (needs) -", "-"},
             Case{"desktop(win-nil)", nullptr, onDesktop, "color () -, live", "-, upper box"},
             Case{"desktop", &frameless, onWindow, " () -", "button, readout, upper box"},
         }) {
        const std::string_view expected = path;
        const auto lookThere = [&, found = found, at = at] {
            desktop.screenCapture.refused = expected == "needs-SR";
            desktop.windowServer.captureAllowed = !desktop.screenCapture.refused;
            const auto hit =
                at == onDesktop ? std::nullopt : std::optional(WindowHit{pid, windowBounds});
            HoverOutcome outcome = look(found, at, found == &page, hit);
            desktop.windowServer.captureAllowed = true;
            desktop.screenCapture.refused = false;
            return outcome;
        };
        look(&button, onButton);
        const HoverOutcome outcome = lookThere();
        EXPECT_EQ(outcome.path, expected);
        EXPECT_EQ(inWords(outcome), told) << path;

        // What it leaves of a readout and of a box, which are never known at once.
        std::string left = nameOf(inspector.lastHoveredFrame());
        const int derivations = button.reads["AXTitle"];
        look(&button, onButton);
        left += button.reads["AXTitle"] == derivations ? ", readout" : "";
        for (const auto& [place, box] : {std::pair(onUpper, "upper"), {onLower, "lower"}}) {
            look(&page, onUpper, true);
            lookThere();
            left += nameOf(boxKeptAt(place)) == box ? std::string(", ") + box + " box" : "";
        }
        EXPECT_EQ(left, remembered) << path;
    }
}

TEST_F(InspectorTest, LooksForABoxOnlyInAPageThatIsOneFrame) {
    struct Case {
        const char* name;
        bool electron;
        Size window; ///< empty for none
        Size frame;  ///< of the page in its corner
        const char* path;
    };
    for (const auto& [name, electron, window, frame, path] : {
             Case{"another application", false, {600, 400}, {600, 400}, "AX-real"},
             Case{"the desktop", true, {}, {600, 400}, "AX-real"},
             Case{"narrower", true, {600, 400}, {539, 400}, "AX-real"},
             Case{"box nearly as large", true, {132, 34}, {132, 34}, "AX-coarse-shown"},
             Case{"box less wide", true, {133, 34}, {133, 34}, "coarse→pixel"},
             Case{"box less high", true, {132, 35}, {132, 35}, "coarse→pixel"},
         }) {
        page.setFrame({0, 0, frame.width, frame.height});
        const WindowHit hit = {pid, {0, 0, window.width, window.height}};
        EXPECT_EQ(
            look(&page, onUpper, electron, hit.bounds.isEmpty() ? std::nullopt : std::optional(hit))
                .path,
            path)
            << name;
        inspector.forget();
    }
}

TEST_F(InspectorTest, ReadsTheBoxAgainAtItsEdge) {
    look(nullptr, onUpper);
    EXPECT_EQ(boxKeptAt({301, 251}), upperBox);
    for (const Point edge : {Point{300.9, 260}, {350, 250.9}, {418, 260}, {350, 280}}) {
        look(nullptr, onUpper);
        EXPECT_EQ(boxKeptAt(edge), std::nullopt) << edge;
    }
    look(nullptr, onUpper);
    inspector.forget();
    EXPECT_EQ(boxKeptAt(onUpper), std::nullopt);
}

TEST_F(InspectorTest, AddsTheColourUnderThePointerWhereItIsWanted) {
    const Color blue = {30 / 255.0, 144 / 255.0, 1, 1};
    const auto colorRows = [&](double time, Point at, bool wanted = true) {
        HoverOutcome outcome;
        outcome.liveColor = wanted;
        inspector.addLiveColor(outcome, {time, at, {}}, 9);
        return outcome.rows;
    };
    const std::vector<GlanceRow> blueRow = {{"pixel", "#1E90FF", blue}};
    EXPECT_EQ(colorRows(5, onUpper, false), std::vector<GlanceRow>());
    EXPECT_EQ(colorRows(5, onUpper), blueRow);
    EXPECT_EQ(colorRows(5.1, onWindow), blueRow) << "read again only after a tenth of a second";
    EXPECT_EQ(colorRows(5.11, onWindow), (std::vector<GlanceRow>{{"pixel", "#FFFFFF", white}}));
    EXPECT_EQ(desktop.screenCapture.lastWindowNumber, 9U);
    EXPECT_EQ(desktop.screenCapture.captures, 2);

    desktop.screenCapture.refused = true;
    EXPECT_EQ(colorRows(6, onUpper), std::vector<GlanceRow>()) << "granted, but nothing to read";
    desktop.windowServer.captureAllowed = false;
    EXPECT_EQ(colorRows(6, onUpper), needsAccess);
    desktop.screenCapture.refused = false;
    EXPECT_EQ(colorRows(6, onUpper), blueRow) << "none is not kept";
    inspector.forget();
    EXPECT_EQ(colorRows(6, onWindow), (std::vector<GlanceRow>{{"pixel", "#FFFFFF", white}}));
}

} // namespace
} // namespace lumetry
