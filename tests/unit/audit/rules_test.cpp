#include "audit/palette.h"
#include "audit/rules.h"

#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <string>
#include <vector>

namespace lumetry {
namespace {

constexpr Color onWhite = {1, 1, 1, 1};

Color grey(int level) {
    return {level / 255.0, level / 255.0, level / 255.0, 1};
}

/// A text of 14px, as told by its application.
Component text(const Color& color, const Color& fill = onWhite) {
    Component component;
    component.role = "AXStaticText";
    component.bucket = Bucket::text;
    component.header = "StaticText · Total";
    component.title = "Total";
    component.path = "Window / StaticText · Total";
    component.showsText = true;
    component.evenFill = true;
    component.typeface = Typeface{"Inter", 14, false};
    component.textColor = color;
    component.measures.surface.fill = fill;
    return component;
}

Component estimated(const Color& color) {
    Component component = text(color);
    component.textColorIsEstimated = true;
    return component;
}

Component control(const Rect& frame, const std::string& title = "Save") {
    Component component;
    component.role = "AXButton";
    component.bucket = Bucket::control;
    component.header = "Button · " + title;
    component.title = title;
    component.path = "Window / " + component.header;
    component.frame = frame;
    return component;
}

/// "severity value wanted" of each, errors as "!" and estimates as "~".
std::vector<std::string> said(const std::vector<Finding>& findings) {
    std::vector<std::string> lines;
    lines.reserve(findings.size());
    for (const Finding& finding : findings) {
        lines.push_back(std::string(finding.severity == Severity::error ? "! " : "? ") +
                        (finding.estimated ? "~" : "") + finding.value + " | " + finding.wanted);
    }
    return lines;
}

using Said = std::vector<std::string>;

TEST(ContrastRule, AsksForTheRatioOfTheTextsSize) {
    const auto sized = [](double size, bool bold) {
        Component component = text(grey(0x80)); // 3.95:1
        component.typeface = Typeface{"Inter", size, bold};
        return component;
    };
    const auto count = [](const Component& component, bool enhanced) {
        Thresholds thresholds;
        thresholds.enhanced = enhanced;
        return contrastFindings({&component, 1}, thresholds).size();
    };
    EXPECT_EQ(count(sized(14, false), false), 1U);
    EXPECT_EQ(count(sized(23, false), false), 1U);
    EXPECT_EQ(count(sized(24, false), false), 0U);
    EXPECT_EQ(count(sized(18, true), false), 1U);
    EXPECT_EQ(count(sized(19, true), false), 0U);
    EXPECT_EQ(count(sized(19, false), false), 1U);
    EXPECT_EQ(count(sized(24, false), true), 1U);
    EXPECT_EQ(count(text(grey(0x59)), true), 0U); // 7.00:1
    EXPECT_EQ(count(text(grey(0x5A)), true), 1U); // 6.90:1
}

TEST(ContrastRule, DoubtsWhatIsEstimated) {
    std::vector<Component> components = {
        text(grey(0x76)),      // 4.54:1
        text(grey(0x77)),      // 4.48:1, which must not read 4.5:1
        estimated(grey(0x77)), // within the margin of 0.3
        estimated(grey(0x7C)), // 4.18:1
        text(grey(0x77)),      // on a gradient
    };
    components.back().evenFill = false;
    EXPECT_EQ(
        said(contrastFindings(components, {})),
        (Said{"! 4.47:1 (#777777 on #FFFFFF) | 4.5:1", "? ~≈ 4.47:1 (#777777 on #FFFFFF) | 4.5:1",
              "! ~≈ 4.17:1 (#7C7C7C on #FFFFFF) | 4.5:1",
              "? ~≈ 4.47:1 (#777777 on #FFFFFF) | 4.5:1"}));
}

TEST(ContrastRule, OnlyWarnsOfWhatMayBeLarge) {
    std::vector<Component> components(3, text(grey(0x80))); // 3.95:1
    components[0].typeface.reset();
    components[0].frame.height = 40;
    components[1].typeface.reset();
    components[1].frame.height = 16; // too low for large text
    components[2].typeface.reset();
    components[2].frame.height = 40;
    components[2].textColor = grey(0x99); // 2.85:1
    std::string severities;
    for (const Finding& finding : contrastFindings(components, {})) {
        severities += finding.severity == Severity::error ? '!' : '?';
    }
    EXPECT_EQ(severities, "?!!");
}

TEST(ContrastRule, LeavesAloneWhatShowsNoTextOrIsSwitchedOffOrUnknown) {
    std::vector<Component> components(4, text(grey(0xCC)));
    components[0].showsText = false;
    components[1].enabled = false;
    components[2].measures.surface.fill.reset();
    components[3].textColor.reset();
    EXPECT_EQ(said(contrastFindings(components, {})), Said{});
}

TEST(TargetSizeRule, AllowsSmallTargetsThatHaveRoom) {
    const std::vector<Component> components = {
        control({0, 0, 24, 24}, "large"),
        control({100, 0, 20, 20}, "alone"),
        control({200, 0, 20, 20}, "left"), // centres 23 apart
        control({223, 0, 20, 20}, "right"),
        control({300, 0, 20, 20}, "spaced"), // centres 24 apart
        control({324, 0, 20, 20}, "spaced too"),
        control({400, 0, 20, 20}, "beside a large one"), // its circle reaches to 422
        control({421, 0, 80, 40}, "large"),
        control({600, 0, 80, 23}, "flat, above another"),
        control({600, 23, 80, 23}, "flat, below another"),
    };
    const auto findings = targetSizeFindings(components, {});
    std::vector<std::string> paths;
    paths.reserve(findings.size());
    for (const Finding& finding : findings) {
        paths.push_back(finding.header);
    }
    EXPECT_EQ(paths, (std::vector<std::string>{
                         "Button · left", "Button · right", "Button · beside a large one",
                         "Button · flat, above another", "Button · flat, below another"}));
}

TEST(TargetSizeRule, CountsWhateverCanBeClickedAsANeighbour) {
    const auto beside = [](const Component& other) {
        const std::vector<Component> components = {control({10, 10, 16, 16}), other};
        return said(targetSizeFindings(components, {}));
    };
    const Said tooSmall = {"! 16 × 16 | 24 × 24, or as much room"};
    EXPECT_EQ(beside(control({0, 0, 200, 40})), tooSmall); // around it
    Component other = control({28, 10, 60, 16});
    other.role = "AXLink";
    other.bucket = Bucket::text;
    EXPECT_EQ(beside(other), tooSmall);
    other.enabled = false;
    EXPECT_EQ(beside(other), Said{});
}

TEST(NameRule, WantsTitlesOfControlsInputsAndImages) {
    std::vector<Component> components = {control({}, ""), control({}, ""), control({}, ""),
                                         control({}, "")};
    components[1].role = "AXTextField";
    components[1].bucket = Bucket::input;
    components[2].role = "AXImage";
    components[2].bucket = Bucket::graphic;
    components[3].role = "AXSlider";
    components[3].bucket = Bucket::graphic;
    EXPECT_EQ(nameFindings(components).size(), 3U);
}

TEST(TextSizeRule, FindsWhatIsBelow) {
    std::vector<Component> components(3, text(grey(0)));
    components[0].typeface->size = 9;
    components[1].typeface->size = 8;
    components[2].typeface.reset();
    EXPECT_EQ(said(textSizeFindings(components, {})), (Said{"! 8px | 9px"}));
}

WindowAudit windowOf(std::vector<Component> components) {
    WindowAudit audit;
    audit.title = "Prices";
    audit.components = std::move(components);
    return audit;
}

TEST(ConsistencyRule, FindsColoursThatAreNearlyEqual) {
    std::vector<Component> components = {text(grey(0x33)), text(grey(0x33)), text(grey(0x35)),
                                         text(grey(0x60)), estimated(grey(0x34))};
    components[3].measures.surface.fill = Color{1, 1, 254 / 255.0, 1};
    components[3].evenFill = false; // a gradient
    EXPECT_EQ(said(consistencyFindings(windowOf(components), {})),
              (Said{"? colour #353535 beside #333333 (2 ×) | one colour, or two that can be told "
                    "apart"}));
}

TEST(ConsistencyRule, ComparesNeighboursOfOneKind) {
    std::vector<Component> components = {
        control({0, 0, 60, 30}, "a"),   control({68, 0, 60, 32}, "b"),  // higher by 2
        control({136, 0, 60, 32}, "c"), control({204, 0, 60, 40}, "d"), // meant to be higher
        control({0, 100, 60, 30}, "e"),                                 // below others
        control({400, 0, 60, 31}, "f"),                                 // too far
    };
    components[1].measures.surface.radius = 4;
    components[2].measures.surface.radius = 6;
    components[2].measures.padding = "4px 8px";
    components[3].measures.padding = "4px 10px";
    EXPECT_EQ(said(consistencyFindings(windowOf(components), {})),
              (Said{"? height 32px beside 30px | the same as Button · a",
                    "? ~radius ≈ 6px beside 4px | the same as Button · b",
                    "? padding 4px 10px beside 4px 8px | the same as Button · c"}));
}

TEST(ConsistencyRule, FindsGapsThatMissTheGridByOne) {
    constexpr std::array gaps = {8.0, 7.0, 6.0, 5.0, 0.0};
    std::vector<Component> components(gaps.size(), control({}, "list"));
    for (std::size_t place = 0; place < gaps.size(); ++place) {
        components[place].role = "AXList";
        components[place].bucket = Bucket::collection;
        components[place].measures.spacing = CollectionGap{gaps.at(place), 4, 20, true};
    }
    EXPECT_EQ(said(consistencyFindings(windowOf(components), {})),
              (Said{"? gap 7px | 8px", "? gap 5px | 4px"}));
}

TEST(ConsistencyRule, CountsSizesFamiliesAndRadii) {
    std::vector<Component> components(3, text(grey(0)));
    for (int i = 0; i < 3; ++i) {
        Component& component = components[static_cast<std::size_t>(i)];
        component.typeface = Typeface{"Family " + std::to_string(i), 12.0 + i, false};
        component.measures.surface.radius = 4 * i;
    }
    Thresholds thresholds;
    thresholds.fontSizes = thresholds.families = thresholds.radii = 3;
    EXPECT_EQ(said(consistencyFindings(windowOf(components), thresholds)), Said{});
    thresholds.fontSizes = thresholds.families = thresholds.radii = 2;
    EXPECT_EQ(said(consistencyFindings(windowOf(components), thresholds)),
              (Said{"? 3 font sizes (12, 13, 14) | at most 2",
                    "? 3 font families (Family 0, Family 1, Family 2) | at most 2",
                    "? 3 corner radii (0, 4, 8) | at most 2"}));
}

TEST(Findings, ComeByRuleThenBySeverityThenFromTheTop) {
    std::vector<Component> components = {control({0, 90, 40, 40}, ""),
                                         control({0, 50, 40, 40}, "")};
    components.push_back(estimated(grey(0x77)));
    components.push_back(text(grey(0xAA)));
    components.back().frame = {0, 900, 40, 20};
    const auto findings = findingsOf(windowOf(components), {});
    std::vector<std::string> values;
    values.reserve(findings.size());
    for (const Finding& finding : findings) {
        values.push_back(std::string(describe(finding.rule).identifier) + " " +
                         std::to_string(static_cast<int>(finding.box.y)));
    }
    EXPECT_EQ(values,
              (std::vector<std::string>{"contrast 900", "contrast 0", "name 50", "name 90"}));
    Thresholds thresholds;
    thresholds.off = {Rule::contrast, Rule::name};
    EXPECT_TRUE(findingsOf(windowOf(components), thresholds).empty());
}

TEST(Inventory, CountsWhatComponentsHaveInCommon) {
    std::vector<Component> components = {text(grey(0x33)), text(grey(0x33)), text(grey(0x80))};
    components[2].typeface = Typeface{"Inter", 20, true};
    components[2].measures.padding = "4px";
    components[2].measures.spacing = CollectionGap{8, 3, 20, true};
    components[2].measures.surface.radius = 6;
    const Inventory inventory = inventoryOf(components);
    ASSERT_EQ(inventory.palette.size(), 3U);
    EXPECT_EQ(inventory.palette[0].color, onWhite);
    EXPECT_EQ(inventory.palette[0].count, 3U);
    EXPECT_TRUE(inventory.palette[0].isFill && !inventory.palette[0].isText);
    EXPECT_TRUE(inventory.palette[1].isText && !inventory.palette[1].isFill);
    ASSERT_EQ(inventory.type.size(), 2U);
    EXPECT_EQ(inventory.type[0].value, (Typeface{"Inter", 14, false}));
    EXPECT_EQ(inventory.type[0].count, 2U);
    ASSERT_EQ(inventory.radii.size(), 1U);
    EXPECT_EQ(inventory.radii[0].value, 6);
    ASSERT_EQ(inventory.spacing.size(), 2U);
    EXPECT_EQ(inventory.spacing[0].value, "gap 8px");
    EXPECT_EQ(inventory.spacing[1].value, "padding 4px");
}

TEST(TypefaceOf, ReadsFontRows) {
    EXPECT_EQ(typefaceOf("Inter · 14px · semibold"), (Typeface{"Inter", 14, false}));
    EXPECT_EQ(typefaceOf("Inter · 19px · bold"), (Typeface{"Inter", 19, true}));
    EXPECT_EQ(typefaceOf("Arial Black · 12px · black"), (Typeface{"Arial Black", 12, true}));
    EXPECT_EQ(typefaceOf("SF Pro Text · 13px · ~system"), (Typeface{"SF Pro Text", 13, false}));
    EXPECT_EQ(typefaceOf("Inter"), std::nullopt);
    EXPECT_EQ(typefaceOf("10px"), std::nullopt);
}

} // namespace
} // namespace lumetry
