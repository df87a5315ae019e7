#include "session_test.h"

#include <optional>

namespace lumetry {
namespace {

class MeasureMode : public SessionTest {
protected:
    MeasureMode() { overlay->start(); }

    void expectPinned(const std::optional<Rect>& rect) const {
        EXPECT_EQ(view().measureA, rect ? std::optional(inView(*rect)) : std::nullopt);
    }
};

TEST_F(MeasureMode, PinsTheSelectionAndFollowsThePointer) {
    hover(onLabel);
    hoverWithOption(onWindow);
    expectPinned(buttonFrame);
    EXPECT_EQ(view().measureB, std::nullopt);
    EXPECT_EQ(view().targetRect, Rect());
    EXPECT_EQ(view().header, "");
    EXPECT_TRUE(view().rows.empty());

    hoverWithOption(onLabel);
    expectPinned(buttonFrame);
    EXPECT_EQ(view().measureB, inView(labelFrame)) << "the element itself, not its component";

    desktop.pointer.modifiers = modifierShift | modifierCommand;
    hover(onField);
    expectPinned({});
    EXPECT_EQ(view().measureB, std::nullopt);
    EXPECT_EQ(view().header, "TextField · Hello");
    hoverWithOption(onWindow);
    expectPinned(fieldFrame);
}

TEST_F(MeasureMode, WithoutASelectionPinsTheFirstElementWithAFrame) {
    hover(onWindow);
    hoverWithOption(onWindow);
    expectPinned({});
    EXPECT_EQ(view().header, "") << "hover mode goes on";
    hoverWithOption(onDesktop);
    EXPECT_EQ(view().header, "color");

    const AXValue size = label.attributes.at("AXSize");
    label.set("AXSize", Size{0, 0});
    desktop.accessibility.application(pid).hitTest = [this](Point) { return &label; };
    hoverWithOption(onLabel);
    expectPinned({});
    EXPECT_EQ(view().targetRect, inView(buttonFrame)) << "hover mode found the label's button";
    hoverWithOption(onLabel);
    expectPinned(buttonFrame);

    desktop.pointer.modifiers = 0;
    hover(onDesktop);
    label.set("AXSize", size);
    hoverWithOption(onLabel);
    expectPinned(labelFrame);
}

TEST_F(MeasureMode, StopForgetsThePinnedEnd) {
    hover(onWindow);
    hoverWithOption(onButton);
    expectPinned(buttonFrame);
    overlay->stop();
    desktop.runLoop.advance(1);
    desktop.pointAt(onField);
    overlay->start();
    expectPinned(fieldFrame);
}

} // namespace
} // namespace lumetry
