#include "session/glance.h"

#include "platform/ax_value.h"
#include "support/fake_platform/fake_desktop.h"
#include "support/pictures/pictures.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace lumetry {
namespace {

constexpr Rect frame = {20, 20, 160, 90};
constexpr std::uint32_t fill = 0x336699;
constexpr std::uint32_t ink = 0xFFFFFF;

/// A component that has everything that can be measured: text on a filled surface with square
/// corners, and three children in a column.
class GlanceRows : public testing::Test {
protected:
    GlanceRows() {
        Bitmap screen = evenBitmap(400, 300, 0xEEEEEE);
        fillRect(screen, {20, 20, 160, 90}, fill);
        fillRect(screen, {40, 40, 40, 20}, ink);
        desktop.screenCapture.paint(std::move(screen));
        std::vector<FakeElement*> children;
        for (const double y : {30, 60, 90}) {
            children.push_back(&desktop.accessibility.makeElement(1, "AXGroup"));
            children.back()->setFrame({30, y, 140, 10});
        }
        component.setChildren(children);
    }

    void setText(bool withColor) {
        const auto font = std::make_shared<AXDictionary>();
        font->insert_or_assign("AXFontName", AXValue("Inter-SemiBold"));
        font->insert_or_assign("AXFontFamily", AXValue("Inter"));
        font->insert_or_assign("AXFontSize", AXValue(AXNumber{14}));
        const auto attributes = std::make_shared<AXDictionary>();
        attributes->insert_or_assign("AXFont", AXValue(std::shared_ptr<const AXDictionary>(font)));
        if (withColor) {
            attributes->insert_or_assign("AXForegroundColor", AXValue(Color{1, 0, 0, 1}));
        }
        const auto text = std::make_shared<AXAttributedString>();
        text->text = "S";
        text->runs.push_back({{0, 1}, attributes});
        component.set("AXNumberOfCharacters", AXValue(std::int64_t{4}));
        component.parameterizedAttributes.insert_or_assign(
            "AXAttributedStringForRange", AXValue(std::shared_ptr<const AXAttributedString>(text)));
    }

    /// Labels and values of the rows, as "label value; ...".
    [[nodiscard]] std::string rows(const std::string& role) {
        component.set("AXRole", AXValue(role));
        const Glance glance = deriveGlance(
            desktop.platform, {component.handle(), bucketFor(role), component.handle()}, frame, 9);
        std::string text;
        for (const GlanceRow& row : glance.rows) {
            text += row.label;
            text += ' ';
            text += row.value;
            text += row.swatch ? "*; " : "; ";
        }
        return text + (glance.liveColor ? "live" : "");
    }

    FakeDesktop desktop;
    FakeElement& component = desktop.accessibility.makeElement(1, "AXButton");
};

TEST_F(GlanceRows, FollowTheClassOfTheComponent) {
    setText(true);
    const struct {
        const char* role;
        const char* rows;
    } cases[] = {
        {"AXStaticText", "size 160 × 90; font Inter · 14px · semibold; color #FF0000*; "
                         "contrast 1.5:1 · ✕; "},
        {"AXButton", "size 160 × 90; fill ≈ #336699*; padding 10px; "
                     "font Inter · 14px · semibold; text #FF0000*; contrast 1.5:1 · ✕; "},
        {"AXTextField", "size 160 × 90; fill ≈ #336699*; padding 10px; "
                        "font Inter · 14px · semibold; text #FF0000*; contrast 1.5:1 · ✕; "},
        {"AXGroup", "size 160 × 90; fill ≈ #336699*; padding 10px; gap 20px; "},
        {"AXList", "size 160 × 90; gap 20px; row height 10px; items 3; "},
        {"AXWindow", "size 160 × 90; "},
        {"AXImage", "size 160 × 90; ratio 16:9; live"},
        {"AXSlider", "size 160 × 90; live"},
    };
    for (const auto& [role, expected] : cases) {
        EXPECT_EQ(rows(role), expected) << role;
    }
    EXPECT_EQ(desktop.screenCapture.lastWindowNumber, 9U);
}

TEST_F(GlanceRows, TakeTheInkWhereTheTextTellsNoColour) {
    setText(false);
    EXPECT_EQ(rows("AXButton"), "size 160 × 90; fill ≈ #336699*; padding 10px; "
                                "font Inter · 14px · semibold; text ≈ #FFFFFF*; "
                                "contrast 6.0:1 · AA; ");
}

TEST_F(GlanceRows, SayWhatIsMissingWithoutScreenAccess) {
    setText(true);
    desktop.windowServer.captureAllowed = false;
    EXPECT_EQ(rows("AXButton"), "size 160 × 90; padding 10px; font Inter · 14px · semibold; "
                                "text #FF0000*; colors needs Screen Recording; ");
    EXPECT_EQ(rows("AXImage"), "size 160 × 90; ratio 16:9; colors needs Screen Recording; live");
    EXPECT_EQ(rows("AXList"), "size 160 × 90; gap 20px; row height 10px; items 3; ");
    EXPECT_EQ(rows("AXWindow"), "size 160 × 90; ");
    EXPECT_EQ(desktop.screenCapture.captures, 0);
}

TEST(ContrastRow, GradesTheExactRatio) {
    // Greys on white on either side of both limits.
    const auto onWhite = [](int grey) {
        const double component = grey / 255.0;
        return contrastRow({component, component, component, 1}, white).value;
    };
    EXPECT_EQ(onWhite(118), "4.5:1 · AA");
    EXPECT_EQ(onWhite(119), "4.5:1 · ✕");
    EXPECT_EQ(onWhite(89), "7.0:1 · AAA");
    EXPECT_EQ(onWhite(90), "6.9:1 · AA");
    EXPECT_EQ(onWhite(0), "21.0:1 · AAA");
}

} // namespace
} // namespace lumetry
