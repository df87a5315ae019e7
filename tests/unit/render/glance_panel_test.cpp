#include "drawing.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace lumetry {
namespace {

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
