#include "session_test.h"

#include <string>
#include <vector>

namespace lumetry {
namespace {

class Hover : public SessionTest {
protected:
    Hover() { overlay->start(); }

    /// How often the readout of the button was derived: only that reads its title.
    [[nodiscard]] int derivations() { return button.reads["AXTitle"]; }
};

TEST_F(Hover, ShowsTheComponentBesideThePointer) {
    hover(onLabel);
    EXPECT_EQ(view().targetRect, inView(buttonFrame)) << "the button that the label belongs to";
    EXPECT_EQ(view().header, "Button · Save");
    ASSERT_FALSE(view().rows.empty());
    EXPECT_EQ(view().rows.front(), (GlanceRow{"size", "80 × 30", {}}));
    EXPECT_EQ(view().cursorPoint, (Point{150, 770}));
    hover(onField);
    EXPECT_EQ(view().targetRect, inView(fieldFrame));
    EXPECT_EQ(view().header, "TextField · Hello");
}

TEST_F(Hover, DropsSamplesWithinTheInterval) {
    const int drawn = window().needsDisplay;
    const int reads = desktop.accessibility.totalReads();
    desktop.pointAt(onField);
    desktop.runLoop.advance(0.0249);
    desktop.eventMonitors.fire({EventType::mouseMoved});
    EXPECT_EQ(view().targetRect, inView(buttonFrame));
    EXPECT_EQ(desktop.accessibility.totalReads(), reads);
    desktop.runLoop.advance(0.001);
    EXPECT_EQ(window().needsDisplay, drawn) << "a dropped sample is not made up for";
    desktop.eventMonitors.fire({EventType::mouseMoved});
    EXPECT_EQ(view().targetRect, inView(fieldFrame)) << "counted from the last one taken";
}

TEST_F(Hover, FallsBackToTheFrameOfTheElementUnderThePointer) {
    button.attributes.erase("AXSize");
    hover(onLabel);
    EXPECT_EQ(view().targetRect, inView(labelFrame));
    EXPECT_EQ(view().header, "Button · Save") << "what is described stays the component";
}

TEST_F(Hover, DerivesTheReadoutWhenComponentOrFrameChange) {
    EXPECT_EQ(derivations(), 1);
    button.set("AXTitle", "Changed");
    hover(onLabel);
    EXPECT_EQ(derivations(), 1) << "the same component, hit in another place";
    EXPECT_EQ(view().header, "Button · Save");

    button.setFrame({120.25, 120, 80, 30});
    hover(onButton);
    EXPECT_EQ(derivations(), 2) << "moved";
    EXPECT_EQ(view().header, "Button · Changed");
    EXPECT_EQ(view().targetRect, inView({120.25, 120, 80, 30}));
    button.setFrame({120.25, 120, 80, 30.5});
    hover(onButton);
    EXPECT_EQ(derivations(), 3) << "resized";

    overlay->stop();
    desktop.runLoop.advance(1);
    overlay->start();
    EXPECT_EQ(derivations(), 4) << "started again";
}

TEST_F(Hover, AnotherComponentInTheSamePlaceHasItsOwnReadout) {
    FakeElement& cover = desktop.accessibility.makeElement(pid, "AXCell");
    cover.set("AXTitle", "Row").setFrame(buttonFrame);
    desktop.accessibility.application(pid).answerWith({&cover});
    hover(onButton);
    EXPECT_EQ(view().header, "Cell · Row");
}

TEST_F(Hover, AsksForWhatItNeedsOnceInOneSample) {
    button.reads.clear();
    label.reads.clear();
    const int prefetches = desktop.accessibility.prefetches;
    button.setFrame({121, 120, 80, 30});
    hover(onLabel);
    using Reads = decltype(button.reads);
    EXPECT_EQ(button.reads, (Reads{{"AXAttributedStringForRange", 1},
                                   {"AXChildren", 1},
                                   {"AXNumberOfCharacters", 1},
                                   {"AXPosition", 1},
                                   {"AXRole", 1},
                                   {"AXSize", 1},
                                   {"AXTitle", 1},
                                   {"AXValue", 1}}));
    EXPECT_EQ(label.reads, (Reads{{"AXAttributedStringForRange", 1},
                                  {"AXChildren", 1},
                                  {"AXNumberOfCharacters", 1},
                                  {"AXParent", 1},
                                  {"AXPosition", 1},
                                  {"AXRole", 1},
                                  {"AXSize", 1},
                                  {"AXTitle", 1},
                                  {"AXValue", 1}}));
    EXPECT_EQ(desktop.accessibility.prefetches - prefetches, 5);
}

TEST_F(Hover, PlacesEverythingOnTheScreensThatThereAreAtTheStart) {
    desktop.windowServer.allScreens = {
        {{-1280, -200, 1280, 720}, {}}, {{0, 0, 1440, 900}, {}}, {{0, 900, 1000, 500}, {}}};
    ASSERT_EQ(window().frame, (Rect{0, 0, 1440, 900})) << "not while inspect mode is on";
    overlay->stop();
    overlay->start();
    ASSERT_EQ(window().frame, (Rect{-1280, -200, 2720, 1600}));
    struct Case {
        const char* name;
        Rect frame; ///< accessibility space
        Rect box;   ///< in the view
    };
    for (const auto& [name, frame, box] : {
             Case{"primary", {10, 20, 30, 40}, {1290, 1040, 30, 40}},
             Case{"to the left", {-1280, 500, 30, 40}, {0, 560, 30, 40}},
             Case{"above", {500, -500, 30, 40}, {1780, 1560, 30, 40}},
         }) {
        desktop.windowServer.windows->front().bounds = frame;
        button.setFrame(frame);
        desktop.accessibility.application(pid).answerWith({&button});
        hover({frame.x + 10, frame.y + 20});
        EXPECT_EQ(view().targetRect, box) << name;
        EXPECT_EQ(view().cursorPoint, (Point{box.x + 10, box.y + 20})) << name;
    }
}

} // namespace
} // namespace lumetry
