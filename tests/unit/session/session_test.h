#pragma once

#include "session/overlay.h"
#include "support/fake_platform/fake_desktop.h"

#include <gtest/gtest.h>

#include <memory>
#include <ostream>

namespace lumetry {

inline std::ostream& operator<<(std::ostream& out, const GlanceRow& row) {
    return out << row.label << ": " << row.value << (row.swatch ? " with a chip" : "");
}

/// A session over one application window that holds a button with a label, and a field.
class SessionTest : public testing::Test {
protected:
    static constexpr pid_t pid = 1;
    static constexpr Rect windowBounds = {100, 100, 600, 400};
    static constexpr Rect buttonFrame = {120, 120, 80, 30};
    static constexpr Rect labelFrame = {140, 125, 40, 20};
    static constexpr Rect fieldFrame = {120, 200, 200, 25};
    static constexpr Point onButton = {125, 125};
    static constexpr Point onLabel = {150, 130};
    static constexpr Point onField = {130, 210};
    static constexpr Point onWindow = {600, 400}; ///< where the application knows no element
    static constexpr Point onDesktop = {1000, 700};

    SessionTest() {
        desktop.launch(pid, "Notes", "com.example.notes");
        desktop.openWindow(pid, windowBounds);
        button.set("AXTitle", "Save").setFrame(buttonFrame).setChildren({&label});
        label.set("AXValue", "Save it").setFrame(labelFrame);
        field.set("AXValue", "Hello").setFrame(fieldFrame);
        desktop.accessibility.application(pid).answerWith({&label, &button, &field});
        desktop.pointAt(onButton);
    }

    [[nodiscard]] OverlayWindowRecord& window() { return *desktop.overlayWindows.made.front(); }
    [[nodiscard]] const OverlayView& view() const { return overlay->view(); }
    /// Moves the pointer there, well after the last sample.
    void hover(Point at) {
        desktop.runLoop.advance(1);
        desktop.pointAt(at);
        desktop.eventMonitors.fire({EventType::mouseMoved});
    }
    void hoverWithOption(Point at) {
        desktop.pointer.modifiers = modifierOption;
        hover(at);
    }
    /// A rectangle as the view sees it on the one screen.
    [[nodiscard]] static Rect inView(const Rect& rect) {
        return flipped(rect, FakeDesktop::screenHeight);
    }

    FakeDesktop desktop;
    FakeElement& button = desktop.accessibility.makeElement(pid, "AXButton");
    FakeElement& label = desktop.accessibility.makeElement(pid, "AXStaticText");
    FakeElement& field = desktop.accessibility.makeElement(pid, "AXTextField");
    std::unique_ptr<Overlay> overlay = std::make_unique<Overlay>(desktop.platform, desktop.state);
};

} // namespace lumetry
