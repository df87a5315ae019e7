#include "session/glance.h"

#include "base/color_metrics.h"
#include "platform/ax_value.h"
#include "support/fake_platform/fake_desktop.h"
#include "support/pictures/pictures.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <tuple>
#include <vector>

namespace lumetry {
namespace {

constexpr Rect frame = {20, 20, 160, 90};
constexpr std::uint32_t fill = 0x336699;
constexpr std::uint32_t ink = 0xFFFFFF;

/// A component that has everything that can be measured: a filled surface with round corners, three
/// children in a column, and text that only its text source tells of.
class GlanceTest : public testing::Test {
protected:
    GlanceTest() {
        Bitmap screen = evenBitmap(400, 300, 0x101010);
        fillRoundedRect(screen, {20, 20, 160, 90}, 12, fill);
        fillRect(screen, {40, 40, 40, 20}, ink);
        desktop.screenCapture.paint(std::move(screen));
        setChildren({30, 60, 90}, 30);
    }

    /// Children of 10 points height at these places, from there to 10 points before the right edge.
    void setChildren(const std::vector<double>& places, double left) {
        std::vector<FakeElement*> children;
        for (const double y : places) {
            children.push_back(&desktop.accessibility.makeElement(1, "AXGroup"));
            children.back()->setFrame({left, y, 170 - left, 10});
        }
        component.setChildren(children);
    }

    void setText(bool withColor) {
        const auto font =
            std::make_shared<const AXDictionary>(AXDictionary{{"AXFontName", "Inter-SemiBold"},
                                                              {"AXFontFamily", "Inter"},
                                                              {"AXFontSize", AXNumber{14}}});
        AXDictionary attributes = {{"AXFont", AXValue(font)}};
        if (withColor) {
            attributes.insert_or_assign("AXForegroundColor", AXValue(Color{1, 0, 0, 1}));
        }
        label.set("AXNumberOfCharacters", AXValue(std::int64_t{4}));
        label.parameterizedAttributes.insert_or_assign(
            "AXAttributedStringForRange",
            AXValue(std::make_shared<const AXAttributedString>(AXAttributedString{
                "S", {{{0, 1}, std::make_shared<const AXDictionary>(attributes)}}})));
    }

    [[nodiscard]] Glance derive(Bucket bucket) {
        return deriveGlance(desktop.platform, {component.handle(), bucket, label.handle()}, frame,
                            9);
    }
    /// Labels and values of the rows, as "label value; ...".
    [[nodiscard]] std::string rows(const std::string& role) {
        component.set("AXRole", AXValue(role));
        const Glance glance = derive(bucketFor(role));
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
    FakeElement& label = desktop.accessibility.makeElement(1, "AXStaticText");
};

TEST_F(GlanceTest, RowsFollowTheClassOfTheComponent) {
    setText(true);
    const struct {
        const char* role;
        const char* rows;
    } cases[] = {
        {"AXStaticText", "size 160 × 90; font Inter · 14px · semibold; color #FF0000*; "
                         "contrast 1.5:1 · ✕; "},
        {"AXButton", "size 160 × 90; fill ≈ #336699*; radius ≈ 14px; padding 10px; "
                     "font Inter · 14px · semibold; text #FF0000*; contrast 1.5:1 · ✕; "},
        {"AXTextField", "size 160 × 90; fill ≈ #336699*; radius ≈ 14px; padding 10px; "
                        "font Inter · 14px · semibold; text #FF0000*; contrast 1.5:1 · ✕; "},
        {"AXGroup", "size 160 × 90; fill ≈ #336699*; radius ≈ 14px; padding 10px; gap 20px; "},
        {"AXList", "size 160 × 90; gap 20px; row height 10px; items 3; "},
        {"AXWindow", "size 160 × 90; "},
        {"AXImage", "size 160 × 90; ratio 16:9; radius ≈ 14px; live"},
        {"AXVideo", "size 160 × 90; ratio 16:9; radius ≈ 14px; live"},
        {"AXSlider", "size 160 × 90; live"},
    };
    for (const auto& [role, expected] : cases) {
        EXPECT_EQ(rows(role), expected) << role;
    }
    EXPECT_EQ(desktop.screenCapture.lastWindowNumber, 9U);
}

TEST_F(GlanceTest, TakesTheInkWhereTheTextTellsNoColour) {
    setText(false);
    EXPECT_EQ(rows("AXButton"), "size 160 × 90; fill ≈ #336699*; radius ≈ 14px; padding 10px; "
                                "font Inter · 14px · semibold; text ≈ #FFFFFF*; "
                                "contrast 6.0:1 · AA; ");
}

TEST_F(GlanceTest, HasFewerRowsWhereTwoChildrenLeaveALargeSpace) {
    setChildren({30, 60}, 90);
    const std::string surface = "size 160 × 90; fill ≈ #336699*; radius ≈ 14px; ";
    EXPECT_EQ(rows("AXButton"),
              surface + "padding 10px 10px 40px 70px; text ≈ #FFFFFF*; contrast 6.0:1 · AA; ");
    EXPECT_EQ(rows("AXGroup"), surface);
    EXPECT_EQ(rows("AXList"), "size 160 × 90; gap 20px; row height 10px; items 2; ");
    FakeElement& left = desktop.accessibility.makeElement(1, "AXGroup").setFrame({30, 30, 40, 50});
    FakeElement& right = desktop.accessibility.makeElement(1, "AXGroup").setFrame({75, 30, 40, 50});
    component.setChildren({&left, &right});
    EXPECT_EQ(rows("AXList"), "size 160 × 90; gap 5px; item width 40px; items 2; ");
}

TEST_F(GlanceTest, SaysWhatIsMissingWithoutScreenAccess) {
    setText(true);
    desktop.windowServer.captureAllowed = false;
    EXPECT_EQ(rows("AXButton"), "size 160 × 90; padding 10px; font Inter · 14px · semibold; "
                                "text #FF0000*; colors needs Screen Recording; ");
    EXPECT_EQ(rows("AXImage"), "size 160 × 90; ratio 16:9; colors needs Screen Recording; live");
    EXPECT_EQ(rows("AXList"), "size 160 × 90; gap 20px; row height 10px; items 3; ");
    EXPECT_EQ(rows("AXWindow"), "size 160 × 90; ");
    EXPECT_EQ(desktop.screenCapture.captures, 0);
}

TEST_F(GlanceTest, HeaderIsTheKindAndWhatIsWrittenOnIt) {
    const auto setOrErase = [](FakeElement& element, const char* attribute, const char* text) {
        element.attributes.erase(attribute);
        if (text != nullptr) {
            element.set(attribute, text);
        }
    };
    const struct {
        const char* role;
        const char* title;
        const char* value; ///< of the text source
        const char* header;
    } cases[] = {
        {"AXButton", "Save", "Save it", "Button · Save"},
        {"AXButton", nullptr, "Hello world", "Button · Hello world"},
        {"AXButton", " \n\u00A0", " Hello ", "Button · Hello"},
        {nullptr, "Save", nullptr, "Unknown · Save"},
        {"AXMAXimum", nullptr, nullptr, "Mimum"},
        {"AXButton", "  abcdefghijklmnopqrstuvwxyé!", nullptr,
         "Button · abcdefghijklmnopqrstuvwxyé"}, // 26 characters, counted after trimming
    };
    component.set("AXValue", "the component's own");
    for (const auto& [role, title, value, header] : cases) {
        setOrErase(component, "AXRole", role);
        setOrErase(component, "AXTitle", title);
        setOrErase(label, "AXValue", value);
        EXPECT_EQ(derive(Bucket::container).header, header);
    }
    EXPECT_EQ(sizeRow({119.6, 31.4}).value, "120 × 31");
}

TEST_F(GlanceTest, OfABrowserPointsToItsPages) {
    desktop.launch(1, "Safari", "com.apple.Safari");
    EXPECT_EQ(rows("AXButton"), "size 160 × 90; for CSS Lumetry ⌥M; ");
    EXPECT_EQ(derive(Bucket::control).header, "🌐 Safari · web");
    EXPECT_EQ(desktop.accessibility.totalReads(), 0);
    desktop.applications.running[1].localizedName.reset();
    EXPECT_EQ(derive(Bucket::control).header, "🌐 Browser · web");
    component.pid.reset();
    EXPECT_EQ(derive(Bucket::control).header, "Button") << "its process is unknown";
}

TEST(ContrastRow, GradesTheExactRatio) {
    constexpr Color black = {0, 0, 0, 1};
    const auto yellow = [](double component) { return Color{component, component, 0, 1}; };
    for (const auto& [ratio, component, reached, missed] :
         {std::tuple(4.5, 0.47151691320941669, "4.5:1 · AA", "4.5:1 · ✕"),
          {7.0, 0.60409345000169168, "7.0:1 · AAA", "7.0:1 · AA"}}) {
        ASSERT_EQ(wcagContrast(yellow(component), black), ratio);
        EXPECT_EQ(contrastRow(yellow(component), black).value, reached);
        EXPECT_EQ(contrastRow(black, yellow(component - 1e-9)).value, missed);
    }
}

} // namespace
} // namespace lumetry
