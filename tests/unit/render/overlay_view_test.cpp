#include "render/overlay_view.h"

#include "platform/display_list.h"
#include "support/fake_platform/fake_windows.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

namespace lumetry {
namespace {

/// What the view draws in a window of that frame.
DisplayList drawn(OverlayView& view, const Rect& windowFrame = {0, 0, 1000, 800}) {
    const FixedTextMetrics metrics;
    RecordingCanvas canvas(metrics);
    view.draw(canvas, windowFrame);
    return canvas.take();
}

/// The commands of one kind, in drawing order.
template<typename Command>
std::vector<Command> commandsOf(const DisplayList& list) {
    std::vector<Command> commands;
    for (const DrawCommand& each : list) {
        if (const auto* command = std::get_if<Command>(&each)) {
            commands.push_back(*command);
        }
    }
    return commands;
}

constexpr Color pink = {1.0, 0.239, 0.541, 1};
constexpr Rect element = {100, 200, 50, 30};

/// The outline of the element above.
DisplayList outline() {
    DisplayList list = {FillRoundedRect{element, 4, pink.withAlpha(0.07)},
                        StrokeRoundedRect{element, 4, pink, 1.5}};
    for (const Point corner : {Point{100, 200}, {100, 230}, {150, 200}, {150, 230}}) {
        const Rect handle = {corner.x - 3, corner.y - 3, 6, 6};
        list.emplace_back(FillEllipse{handle, white});
        list.emplace_back(StrokeEllipse{handle, pink, 1.5});
    }
    return list;
}

TEST(OverlayView, DrawsTheExitTagBeneathEverythingElse) {
    FakeWindowServer server;
    server.allScreens = {{{0, 0, 800, 600}, {0, 40, 790, 540}}};
    OverlayView view(server);
    view.exitTag = true;
    view.targetRect = element;
    const Font key = {FontFamily::system, 10.5, FontWeight::semibold};
    const Font word = {FontFamily::system, 10.5, FontWeight::medium};
    DisplayList expected = {
        FillRoundedRect{{793, 104, 83, 24}, 12, {0.09, 0.09, 0.11, 0.82}},
        StrokeRoundedRect{{793.5, 104.5, 82, 23}, 12, {1, 1, 1, 0.1}, 1},
        FillRoundedRect{{802, 108, 31, 16}, 4, {1, 1, 1, 0.12}},
        DrawText{"esc", {807, 109.25, 21, 13.5}, key, {1, 1, 1, 0.92}},
        DrawText{"exit", {839, 109.25, 28, 13.5}, word, {1, 1, 1, 0.62}},
    };
    const DisplayList rest = outline();
    expected.insert(expected.end(), rest.begin(), rest.end());
    EXPECT_EQ(drawn(view, {-100, -50, 1000, 800}), expected);
}

TEST(OverlayView, PutsTheExitTagOnThePrimaryScreen) {
    const Screen primary = {{0, 0, 800, 600}, {0, 0, 800, 600}};
    const Screen left = {{-640, 0, 640, 480}, {-640, 20, 640, 440}};
    FakeWindowServer server;
    OverlayView view(server);
    view.exitTag = true;
    EXPECT_TRUE(drawn(view).empty()) << "no screen at all";
    server.main = left;
    for (const auto& [screens, corner] :
         {std::pair(std::vector{left, primary}, Point{800 - 83 - 14, 14}),
          {std::vector{left}, Point{-83 - 14, 34}}}) {
        server.allScreens = screens;
        EXPECT_EQ(commandsOf<FillRoundedRect>(drawn(view)).front().rect.origin(), corner);
    }
}

TEST(MeasureMode, ShowsOutlinesAndNoPanel) {
    FakeWindowServer server;
    OverlayView view(server);
    view.targetRect = {1, 2, 3, 4};
    view.header = "Button";
    view.measureB = {{300, 300, 10, 10}};
    EXPECT_FALSE(commandsOf<DrawText>(drawn(view)).empty()) << "the pinned end decides";

    view.measureA = element;
    for (const auto& none : {std::optional<Rect>(), std::optional(Rect{300, 300, 0, 10})}) {
        view.measureB = none;
        EXPECT_EQ(drawn(view), outline());
    }
    view.measureB = {{110, 210, 10, 10}};
    DisplayList both = outline();
    both.emplace_back(StrokeRoundedRect{*view.measureB, 4, pink, 1.5});
    EXPECT_EQ(drawn(view), both) << "elements that overlap have no distance";
}

TEST(MeasureMode, DrawsTheDistanceOnEachAxisWhereElementsAreApart) {
    struct Line {
        Point a;
        Point b;
        std::string label;
    };
    struct Case {
        const char* name;
        Rect other;
        std::vector<Line> lines;
    };
    for (const auto& [name, other, lines] : {
             Case{"to the right, sharing 10 points of height",
                  {174, 220, 20, 40},
                  {{{150, 225}, {174, 225}, "24px"}}},
             Case{"above", {130, 242.5, 100, 9}, {{{140, 230}, {140, 242.5}, "13px"}}},
             Case{"below", {100, 100, 50, 50}, {{{125, 150}, {125, 200}, "50px"}}},
             Case{"diagonal",
                  {170, 250, 20, 10},
                  {{{150, 235}, {170, 235}, "20px"}, {{152.5, 230}, {152.5, 250}, "20px"}}},
             Case{"corner to corner", {150, 230, 20, 10}, {}},
             Case{"level with its edge", {180, 230, 20, 10}, {{{150, 225}, {180, 225}, "30px"}}},
             Case{"nearly touching", {150.6, 200, 20, 30}, {}},
             Case{"one point", {151, 200, 20, 30}, {{{150, 215}, {151, 215}, "1px"}}},
         }) {
        SCOPED_TRACE(name);
        FakeWindowServer server;
        OverlayView view(server);
        view.measureA = element;
        view.measureB = other;
        const DisplayList list = drawn(view);
        const auto strokes = commandsOf<StrokeLine>(list);
        const auto labels = commandsOf<DrawText>(list);
        ASSERT_EQ(strokes.size(), lines.size());
        ASSERT_EQ(labels.size(), lines.size());
        for (std::size_t i = 0; i < lines.size(); ++i) {
            EXPECT_EQ(strokes[i], (StrokeLine{lines[i].a, lines[i].b, pink, 1.5, {5, 3}}));
            EXPECT_EQ(labels[i].text, lines[i].label);
        }
    }
}

TEST(MeasureMode, LabelsADistanceAtItsMiddle) {
    const FixedTextMetrics metrics;
    RecordingCanvas canvas(metrics);
    drawGap(canvas, {100, 50}, {140, 80}, {}); // 50 points long
    const Font font = {FontFamily::monospacedSystem, 11, FontWeight::semibold};
    const DisplayList expected = {
        StrokeLine{{100, 50}, {140, 80}, pink, 1.5, {}},
        FillRoundedRect{{120 - 14 - 6, 65 - 7 - 3, 40, 20}, 5, pink},
        DrawText{"50px", {106, 58, 28, 14}, font, white},
    };
    EXPECT_EQ(canvas.displayList(), expected);
}

const GlanceRow size = {"size", "120 × 32", {}};
const GlanceRow fill = {"fill", "≈ #1E90FF", Color{0.12, 0.56, 1, 1}};

class GlancePanel : public testing::Test {
protected:
    /// The panel: the only filled rectangle of its radius.
    Rect panel() {
        for (const auto& filled : commandsOf<FillRoundedRect>(drawn(view))) {
            if (filled.radius == 9) {
                return filled.rect;
            }
        }
        return Rect::null();
    }

    FakeWindowServer windowServer;
    OverlayView view{windowServer};
};

TEST_F(GlancePanel, FitsItsWidestLine) {
    const std::string wide(40, 'w');
    struct Case {
        const char* name;
        std::string header;
        std::vector<GlanceRow> rows;
        Size size;
    };
    for (const auto& [name, header, rows, expected] : {
             Case{"least width", "", {{"a", "b", {}}}, {150, 44}},
             Case{"header on top", "Button", {size}, {150, 66}},
             Case{"header alone", wide, {}, {280 + 24, 46}},
             Case{"label, distance and value", "", {{"label", wide, {}}}, {35 + 22 + 280 + 24, 44}},
             Case{"room for the chip", "", {{"label", wide, white}}, {35 + 22 + 280 + 17 + 24, 44}},
             Case{"widest row not last", wide, {{"", wide, {}}, size}, {22 + 280 + 24, 86}},
         }) {
        view.header = header;
        view.rows = rows;
        EXPECT_EQ(panel().size(), expected) << name;
    }
}

TEST_F(GlancePanel, KeepsToTheOutlineAndInsideTheView) {
    view.rows = {size}; // 150 × 44 in a view of 1000 × 800
    struct Case {
        const char* name;
        Rect target;
        Point cursor;
        Point origin;
    };
    for (const auto& [name, target, cursor, origin] : {
             Case{"above the outline", {300, 300, 50, 20}, {310, 310}, {300, 328}},
             Case{"just fits above", {300, 728, 50, 20}, {}, {300, 750}},
             Case{"below at the top", {300, 729, 50, 20}, {}, {300, 729 - 44 - 8}},
             Case{"left edge", {-40, 300, 50, 20}, {}, {6, 328}},
             Case{"right edge", {990, 300, 50, 20}, {}, {1000 - 150 - 6, 328}},
             Case{"outline without height", {300, 300, 50, 0}, {500, 400}, {516, 340}},
             Case{"beside the pointer", {}, {500, 400}, {516, 340}},
             Case{"pointer at the lower right", {}, {990, 10}, {844, 6}},
         }) {
        view.targetRect = target;
        view.cursorPoint = cursor;
        EXPECT_EQ(panel().x, origin.x) << name;
        EXPECT_EQ(panel().y, origin.y) << name;
    }
}

TEST_F(GlancePanel, LargerThanTheViewKeepsItsUpperRightCorner) {
    view.rows = std::vector<GlanceRow>(60, {"label", std::string(200, 'w'), {}});
    const Rect rect = panel();
    EXPECT_EQ(rect.maxX(), 1000 - 6);
    EXPECT_EQ(rect.maxY(), 800 - 6);
}

TEST_F(GlancePanel, DrawsHeaderLineAndRowsFromTheTop) {
    view.header = "Button";
    view.rows = {size, fill};
    view.cursorPoint = {84, 202}; // the panel's lower-left corner comes to (100, 100)
    const Font header = {FontFamily::monospacedSystem, 12.5, FontWeight::semibold};
    const Font label = {FontFamily::system, 11.5, FontWeight::regular};
    const Font value = {FontFamily::monospacedSystem, 11.5, FontWeight::medium};
    const double right = 100 + 154 - 12; // the row with the chip is 28 + 22 + 63 + 17 wide
    const double fillX = right - 63;
    const DisplayList expected = {
        FillRoundedRect{{100, 100, 154, 86}, 9, {0.09, 0.09, 0.11, 0.97}},
        DrawText{"Button", {112, 157, 42, 15.5}, header, {1.0, 0.239, 0.541, 1}},
        StrokeLine{{112, 153}, {right, 153}, {1, 1, 1, 0.1}, 1, {}},
        DrawText{"size", {112, 136, 28, 14.5}, label, {0.62, 0.62, 0.66, 1}},
        DrawText{"120 × 32", {right - 56, 136, 56, 14.5}, value, white},
        DrawText{"fill", {112, 116, 28, 14.5}, label, {0.62, 0.62, 0.66, 1}},
        DrawText{"≈ #1E90FF", {fillX, 116, 63, 14.5}, value, white},
        FillRoundedRect{{fillX - 17, 117, 12, 12}, 3, *fill.swatch},
        StrokeRoundedRect{{fillX - 17, 117, 12, 12}, 3, {1, 1, 1, 0.3}, 0.5},
    };
    EXPECT_EQ(drawn(view), expected);
}

} // namespace
} // namespace lumetry
