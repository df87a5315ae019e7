#include "base/text.h"

#include "base/number_text.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>
#include <utility>
#include <vector>

namespace lumetry {
namespace {

TEST(Text, FirstCharactersNeverCutOne) {
    struct Case {
        const char* name;
        std::string text;
        std::size_t count;
        std::string expected;
    };
    const std::string family = "👨‍👩‍👧"; // three people and two joiners
    for (const auto& [name, text, count, expected] : {
             Case{"shorter than asked", "ab", 26, "ab"},
             Case{"none", "abc", 0, ""},
             Case{"byte that forms none", "\xFFx", 1, "\xFF"},
             Case{"combining accents", "e\u0301o\u0308x", 2, "e\u0301o\u0308"},
             Case{"joined emoji", family + family + "x", 2, family + family},
             Case{"flags come in pairs of letters", "🇩🇪🇫🇷🇮🇹", 2, "🇩🇪🇫🇷"},
             Case{"syllable of Hangul letters", "\u1112\u1161\u11ABx", 1, "\u1112\u1161\u11AB"},
         }) {
        EXPECT_EQ(firstCharacters(text, count), expected) << name;
    }
}

TEST(Text, TrimsWhiteSpaceOfEveryScript) {
    using Case = std::pair<std::string, std::string>;
    for (const auto& [text, expected] : {
             Case{" \t\r\n a b \n", "a b"},
             Case{"\u00A0\u3000\u2028x\u2029\u0085", "x"},
             Case{" \u2003 ", ""},
             Case{" \bx\x0E \xFF ", "\bx\x0E \xFF"},
         }) {
        EXPECT_EQ(trimmed(text), expected);
    }
}

TEST(Text, ReplacesBytesThatFormNoCharacter) {
    struct Case {
        const char* name;
        std::string text;
        std::string expected;
    };
    for (const auto& [name, text, expected] : {
             Case{"well-formed", "aé🎉", "aé🎉"},
             Case{"lone byte", "a\xFFz", "a\uFFFDz"},
             Case{"cut short", "a\xE2\x82", "a\uFFFD\uFFFD"},
             Case{"longer than needed", "\xC0\xAF", "\uFFFD\uFFFD"},
         }) {
        EXPECT_EQ(validUtf8(text), expected) << name;
    }
}

TEST(Text, RemovesOccurrencesFromLeftToRight) {
    EXPECT_EQ(removingOccurrences("AXMAXAX", "AX"), "M");
    EXPECT_EQ(removingOccurrences("AAXX", "AX"), "AX") << "what closes up is not removed again";
    EXPECT_EQ(removingOccurrences("ab", ""), "ab");
}

TEST(Text, IsSplitAtEachSeparator) {
    EXPECT_EQ(split(":a::b:", ':'), (std::vector<std::string>{"", "a", "", "b"}));
    EXPECT_EQ(nonEmptyParts(":a::b:", ':'), (std::vector<std::string>{"a", "b"}));
}

TEST(Text, StandsOnOneLineWithEveryControlCharacterEscaped) {
    EXPECT_EQ(onOneLine("a\n\r\t\x1B\u0085\u2028\u2029é \xFF\\"),
              "a\\n\\r\\t\\u001B\\u0085\\u2028\\u2029é \xFF\\");
}

TEST(Text, LowersLettersOfEveryScript) {
    EXPECT_EQ(lowerCase("SF Ünï ΣЖ-9 \U00010400 \xFF"), "sf ünï σж-9 \U00010428 \xFF");
}

constexpr double infinity = std::numeric_limits<double>::infinity();

TEST(WholeNumber, RoundsHalvesAwayFromZero) {
    using Case = std::pair<double, std::string>;
    for (const auto& [value, expected] : {
             Case{0.5, "1"},
             Case{2.5, "3"},
             Case{-2.5, "-3"},
             Case{-0.4, "0"},
             Case{0.49999999999999994, "0"},
             Case{infinity, "inf"},
         }) {
        EXPECT_EQ(wholeNumber(value), expected);
    }
}

TEST(IntegerValue, DropsTheFractionAndWhatNoIntegerHolds) {
    EXPECT_EQ(integerValue(119.6), 119);
    EXPECT_EQ(integerValue(-2.5), -2);
    EXPECT_EQ(integerValue(std::nan("")), 0);
    EXPECT_GT(integerValue(infinity), 1LL << 62);
    EXPECT_LT(integerValue(-infinity), -(1LL << 62));
}

TEST(AspectString, KeepsTermsUpTo32) {
    using Case = std::pair<Size, std::string>; // expected: empty for none
    for (const auto& [size, expected] : {
             Case{{1920, 1080}, "16:9"},
             Case{{1366, 768}, "1.78:1"},
             Case{{32, 1}, "32:1"},
             Case{{33, 1}, "33.00:1"},
             Case{{1, 33}, "0.03:1"},
             Case{{99.6, 50.4}, "2:1"},
             Case{{100.4, 33.4}, "3.01:1"}, // not the 3.03 of the rounded sides
             Case{{0.5, 1}, "1:1"},
             Case{{0.49, 100}, ""},
             Case{{100, 0.49}, ""},
             Case{{std::nan(""), 5}, ""},
             Case{{1e19, 1}, "10000000000000000000.00:1"},
             Case{{1, 1e19}, "0.00:1"},
         }) {
        EXPECT_EQ(aspectString(size).value_or(""), expected) << size.width << " x " << size.height;
    }
}

} // namespace
} // namespace lumetry
