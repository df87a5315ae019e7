#include "probe/typography.h"

#include "support/fake_platform/fake_accessibility.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <utility>
#include <vector>

namespace lumetry {
namespace {

constexpr Color red = {1, 0, 0, 1};
constexpr Color blue = {0, 0, 1, 1};

AttributedStringRef textOf(std::vector<AXTextRun> runs, std::string text = "Save") {
    return std::make_shared<AXAttributedString>(
        AXAttributedString{std::move(text), std::move(runs)});
}

AttributedStringRef textWith(AXDictionary attributes) {
    return textOf({{{0, 4}, std::make_shared<AXDictionary>(std::move(attributes))}});
}

AXValue dictionaryOf(AXDictionary entries) {
    return {
        std::shared_ptr<const AXDictionary>(std::make_shared<AXDictionary>(std::move(entries)))};
}

TEST(FontRow, OfAPlatformFontHasThreeParts) {
    const AXValue other = dictionaryOf({{"AXFontName", "Inter"}});
    using Case = std::pair<PlatformFont, std::string>;
    for (const auto& [font, expected] : {
             Case{{"x", ".AppleSystemUIFont", 13, 5}, "SF Pro Text · 13px · regular"},
             Case{{"x", ".AppleSystemUIFont", 19.5, 9}, "SF Pro Display · 20px · semibold"},
             Case{{"x", "Menlo", 12.5, 3}, "Menlo · 13px · light"},
             Case{{"x", "Menlo", 12.4, 4}, "Menlo · 12px · regular"},
             Case{{"x", "Menlo", 12, 6}, "Menlo · 12px · medium"},
             Case{{"x", "Menlo", 12, 7}, "Menlo · 12px · medium"},
             Case{{"x", "Menlo", 12, 8}, "Menlo · 12px · semibold"},
             Case{{"x", "Menlo", 12, 10}, "Menlo · 12px · bold"},
             Case{{"Menlo-Bold", std::nullopt, 0, 15}, "Menlo-Bold · 0px · bold"},
         }) {
        EXPECT_EQ(fontFrom(*textWith({{"NSFont", font}, {"AXFont", other}})), expected);
    }
}

TEST(FontRow, OfADictionaryHasWhatItTells) {
    using Case = std::pair<AXDictionary, std::string>; // expected: empty for none
    for (const auto& [font, expected] : {
             Case{{{"AXFontName", "Inter-SemiBold"},
                   {"AXFontFamily", "Inter"},
                   {"AXVisibleName", "Inter Semi Bold"},
                   {"AXFontSize", AXNumber{14.9}}},
                  "Inter · 14px · semibold"},
             Case{{{"AXFontName", "Inter-SemiBold"},
                   {"AXFontFamily", "Inter"},
                   {"AXFontSize", std::int64_t{1}}},
                  "Inter · 1px · semibold"},
             Case{{{"AXFontName", "Inter-SemiBold"},
                   {"AXFontFamily", "Inter"},
                   {"AXFontSize", AXNumber{0.9}}},
                  "Inter · semibold"},
             Case{{{"AXFontFamily", "Inter Bold"}, {"AXFontSize", "14"}}, "Inter Bold"},
             Case{{{"AXFontName", "Inter"}}, "Inter"},
             Case{{{"AXVisibleName", ".SF NS Rounded"}}, "SF Pro Rounded"},
             Case{{{"AXFontFamily", std::int64_t{1}}, {"AXVisibleName", "Inter"}}, "Inter"},
             Case{{{"AXFontFamily", ""}, {"AXFontName", "Inter"}, {"AXFontSize", AXNumber{1}}},
                  "SF Pro Text · 1px · ~system"},
             Case{{{"AXFontSize", AXNumber{19}}}, "SF Pro Text · 19px · ~system"},
             Case{{{"AXFontSize", AXNumber{20}}}, "SF Pro Display · 20px · ~system"},
             Case{{{"AXFontSize", AXNumber{0}}}, ""},
             Case{{{"AXFontSize", AXNumber{std::nan("")}}}, ""},
             Case{{}, ""},
         }) {
        EXPECT_EQ(
            fontFrom(*textWith({{"NSFont", "Menlo"}, {"AXFont", dictionaryOf(font)}})).value_or(""),
            expected);
    }
    EXPECT_EQ(fontFrom(*textWith({{"AXFont", std::shared_ptr<const AXDictionary>()}})),
              std::nullopt);
}

TEST(TextColor, IsThatOfThePlatformOrOfTheGraphics) {
    using Case = std::pair<AXDictionary, std::optional<Color>>;
    for (const auto& [attributes, expected] : {
             Case{{{"NSColor", red}, {"AXForegroundColor", blue}}, red},
             Case{{{"NSColor", "red"}, {"AXForegroundColor", blue}}, blue},
             Case{{{"AXForegroundColor", "blue"}}, std::nullopt},
             Case{{{"AXBackgroundColor", blue}}, std::nullopt},
         }) {
        EXPECT_EQ(colorFrom(*textWith(attributes)), expected);
    }
}

TEST(TextColor, IsThatOfTheFirstCharacter) {
    const auto attributes = std::make_shared<AXDictionary>(AXDictionary{{"NSColor", red}});
    const auto others = std::make_shared<AXDictionary>(AXDictionary{{"NSColor", blue}});
    struct Case {
        const char* name;
        std::vector<AXTextRun> runs;
        std::optional<Color> expected;
    };
    for (const auto& [name, runs, expected] : {
             Case{"first of two", {{{0, 1}, attributes}, {{1, 3}, others}}, red},
             Case{"runs in any order", {{{1, 3}, others}, {{0, 1}, attributes}}, red},
             Case{"begun before", {{{-2, 3}, attributes}}, red},
             Case{"only later ones", {{{1, 3}, attributes}}, std::nullopt},
             Case{"over before", {{{-2, 2}, attributes}}, std::nullopt},
             Case{"empty run", {{{0, 0}, attributes}}, std::nullopt},
             Case{"no attributes", {{{0, 4}, nullptr}}, std::nullopt},
         }) {
        EXPECT_EQ(colorFrom(*textOf(runs)), expected) << name;
    }
}

TEST(Family, OfTheSystemFontGoesByItsPublicName) {
    struct Case {
        const char* family;
        long long size;
        const char* expected;
    };
    for (const auto& [family, size, expected] : {
             Case{".AppleSystemUIFont", 19, "SF Pro Text"},
             Case{".AppleSystemUIFont", 20, "SF Pro Display"},
             Case{"System Font Regular", 13, "SF Pro Text"},
             Case{"My SYSTEM FONT Mono", 30, "SF Mono"},
             Case{".SF Compact", 20, "SF Compact Display"},
             Case{".SF Compact Rounded Mono", 17, "SF Pro Rounded"},
             Case{"Menlo", 13, "Menlo"},
             Case{"SystemFont", 13, "SystemFont"},
         }) {
        EXPECT_EQ(cleanFamily(family, size), expected) << family << " " << size;
    }
}

TEST(WeightFromName, TakesTheLongestWord) {
    for (const auto& [name, expected] : {
             std::pair("Inter-ExtraBold", "extrabold"),
             std::pair("UltraBoldItalic", "extrabold"),
             std::pair("Inter-SEMIBOLD", "semibold"),
             std::pair("Futura-DemiBold", "semibold"),
             std::pair("Inter-BlackBold", "black"),
             std::pair("Avenir-HeavyBold", "black"),
             std::pair("Inter-BoldMedium", "bold"),
             std::pair("Inter-MediumLight", "medium"),
             std::pair("HelveticaNeue-UltraLight", "extralight"),
             std::pair("Inter-ExtraLight", "extralight"),
             std::pair("ThinLight", "thin"),
             std::pair("Helvetica-LightOblique", "light"),
             std::pair("Inter-Regular", "regular"),
             std::pair("Menlo-Italic", ""),
         }) {
        EXPECT_EQ(weightFromName(name), expected) << name;
    }
}

/// An application with styled text in some of its elements.
class TextInElements : public testing::Test {
protected:
    FakeElement& make(const char* role) { return accessibility.makeElement(1, role); }

    /// Gives an element text that can be asked for by range.
    static void style(FakeElement& element, const AttributedStringRef& text) {
        element.set("AXNumberOfCharacters", std::int64_t{4});
        element.parameterizedAttributes.insert_or_assign("AXAttributedStringForRange", text);
    }

    FakeAccessibility accessibility;
    AttributedStringRef redText = textWith({{"NSColor", red}});
    AttributedStringRef blueText = textWith({{"NSColor", blue}});
    AttributedStringRef plainText = textWith({});
};

TEST_F(TextInElements, FirstCharacterIsAskedForWhereThereIsText) {
    struct Case {
        const char* name;
        std::optional<AXValue> count;
        std::optional<AXValue> value;
        bool asked;
    };
    for (const auto& [name, count, value, asked] : {
             Case{"counted", std::int64_t{4}, std::nullopt, true},
             Case{"counted as none", std::int64_t{0}, "Save", true},
             Case{"counted below none", std::int64_t{-1}, "Save", false},
             Case{"empty", std::int64_t{0}, "", false},
             Case{"no text", std::nullopt, std::int64_t{4}, false},
         }) {
        FakeElement& element = make("AXStaticText");
        style(element, redText);
        element.attributes.erase("AXNumberOfCharacters");
        for (const auto& [attribute, content] :
             {std::pair("AXNumberOfCharacters", count), std::pair("AXValue", value)}) {
            if (content) {
                element.set(attribute, *content);
            }
        }
        EXPECT_EQ(axAttributedFirstChar(element.handle()).has_value(), asked) << name;
        const auto parameter = element.parameters.find("AXAttributedStringForRange");
        ASSERT_EQ(parameter != element.parameters.end(), asked) << name;
        if (asked) {
            EXPECT_EQ(parameter->second.as<AXRange>(), (AXRange{0, 1}));
        }
    }
}

TEST_F(TextInElements, MarkersServeWhereTheRangeTellsNoCharacter) {
    FakeElement& element = make("AXStaticText");
    const AXTextMarkerRange markers = {std::make_shared<int>(7)};
    element.parameterizedAttributes.insert_or_assign("AXTextMarkerRangeForUIElement", markers);
    element.parameterizedAttributes.insert_or_assign("AXAttributedStringForTextMarkerRange",
                                                     redText);
    EXPECT_EQ(axTextInfoDeep(accessibility, element.handle()), (TextInfo{std::nullopt, red}));
    EXPECT_EQ(element.parameters.at("AXTextMarkerRangeForUIElement").as<AXUIElement>(),
              element.handle());
    EXPECT_EQ(element.parameters.at("AXAttributedStringForTextMarkerRange").as<AXTextMarkerRange>(),
              markers);
    style(element, plainText);
    EXPECT_EQ(axTextInfoDeep(accessibility, element.handle()), TextInfo())
        << "an answer without attributes counts";
    for (const AXValue& answer :
         {AXValue(textOf({}, "")), AXValue(AttributedStringRef()), AXValue("Save")}) {
        element.parameterizedAttributes.insert_or_assign("AXAttributedStringForRange", answer);
        EXPECT_EQ(axTextInfoDeep(accessibility, element.handle()).color, red);
    }
}

TEST_F(TextInElements, TheNearestStyledTextCounts) {
    FakeElement& window = make("AXWindow");
    FakeElement& parent = make("AXGroup");
    FakeElement& element = make("AXButton");
    FakeElement& icon = make("AXImage");
    FakeElement& label = make("AXStaticText");
    FakeElement& inLabel = make("AXStaticText");
    window.setChildren({&parent});
    parent.setChildren({&element});
    element.setChildren({&icon, &label});
    label.setChildren({&inLabel});
    const auto color = [&] { return axTextInfoDeep(accessibility, element.handle()).color; };

    style(window, redText);
    style(inLabel, redText);
    EXPECT_EQ(color(), std::nullopt) << "neither grandparents nor grandchildren are asked";
    style(label, redText);
    style(icon, plainText);
    EXPECT_EQ(color(), red) << "first child with attributes";
    style(parent, blueText);
    EXPECT_EQ(color(), blue) << "the parent before the children";
    style(element, textWith({{"NSFont", PlatformFont{"Menlo", "Menlo", 12, 5}}}));
    EXPECT_EQ(axTextInfoDeep(accessibility, element.handle()),
              (TextInfo{"Menlo · 12px · regular", std::nullopt}))
        << "a font alone ends the search";
}

TEST_F(TextInElements, ManyChildrenAndContainersAreNotSearched) {
    const auto colorIn = [&](const char* role, std::size_t children) {
        FakeElement& element = make(role);
        std::vector<FakeElement*> labels;
        for (std::size_t i = 0; i < children; ++i) {
            labels.push_back(&make("AXStaticText"));
        }
        element.setChildren(labels);
        style(*labels.back(), redText);
        return axTextInfoDeep(accessibility, element.handle()).color;
    };
    EXPECT_EQ(colorIn("AXSheet", 8), red);
    EXPECT_EQ(colorIn("AXSheet", 9), std::nullopt);
    for (const char* role :
         {"AXWindow", "AXScrollArea", "AXOutline", "AXList", "AXTable", "AXGrid", "AXToolbar"}) {
        EXPECT_EQ(colorIn(role, 1), std::nullopt) << role;
    }
}

TEST_F(TextInElements, IsAskedOfChildrenTogether) {
    FakeElement& parent = make("AXGroup");
    FakeElement& element = make("AXButton");
    FakeElement& label = make("AXStaticText");
    FakeElement& icon = make("AXImage");
    parent.setChildren({&element});
    element.setChildren({&label, &icon});
    style(label, redText);
    const Token kept = accessibility.keepReplies();
    EXPECT_EQ(axTextInfoDeep(accessibility, element.handle()).color, red);
    EXPECT_EQ(accessibility.prefetches, 3) << "the element, its parent, all its children";
    EXPECT_EQ(icon.reads.size(), 2U);
    EXPECT_TRUE(icon.parameters.empty()) << "the first with attributes ends the search";
}

} // namespace
} // namespace lumetry
