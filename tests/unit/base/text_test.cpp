#include "base/text.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>

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
             Case{"", ""},
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
    EXPECT_EQ(removingOccurrences("AXStaticText", "AX"), "StaticText");
    EXPECT_EQ(removingOccurrences("AXMAXAX", "AX"), "M");
    EXPECT_EQ(removingOccurrences("AAXX", "AX"), "AX") << "what closes up is not removed again";
    EXPECT_EQ(removingOccurrences("ab", ""), "ab");
}

} // namespace
} // namespace lumetry
