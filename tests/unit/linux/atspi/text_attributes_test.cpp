#include "platform/linux/atspi/tree/text_attributes.h"

#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <optional>
#include <string>
#include <tuple>

namespace lumetry::atspi {
namespace {

/// "family/name/size; r g b" of what the attributes become; "-" for what is left out.
std::string described(const TextAttributes& attributes, const FontHabits& habits = {}) {
    const AXDictionary run = runAttributes(attributes, habits);
    std::string text;
    const auto font = run.find("AXFont");
    if (font != run.end()) {
        const auto dictionary = *font->second.as<std::shared_ptr<const AXDictionary>>();
        for (const char* name : {"AXFontFamily", "AXFontName"}) {
            const auto entry = dictionary->find(name);
            text += entry == dictionary->end() ? "-" : *entry->second.as<std::string>();
            text += '/';
        }
        const auto size = dictionary->find("AXFontSize");
        text += size == dictionary->end()
                    ? "-"
                    : std::to_string(static_cast<int>(size->second.as<AXNumber>()->value * 100));
    }
    const auto color = run.find("AXForegroundColor");
    if (color != run.end()) {
        const Color value = *color->second.as<Color>();
        for (const double component : {value.red, value.green, value.blue}) {
            text += ' ' + std::to_string(std::lround(component * 255));
        }
    }
    return text;
}

TEST(TextAttributes, BecomeAFontAndAColour) {
    const struct {
        TextAttributes attributes;
        std::string expected; ///< the size in hundredths of a pixel
    } cases[] = {
        // Chromium: sizes in tenths of a point, the weight only when it is bold.
        {{{"family-name", "Inter"},
          {"size", "10.5pt"},
          {"weight", "700"},
          {"fg-color", "30,144,255"}},
         "Inter/Inter-Bold/1400 30 144 255"},
        {{{"family-name", "Inter"}, {"size", "11.2pt"}}, "Inter/-/1500"},
        {{{"family-name", "Inter"}, {"size", "9.8pt"}}, "Inter/-/1300"},
        // GTK: points without a unit, colours of 16 bits.
        {{{"family-name", "Sans"},
          {"size", "10"},
          {"weight", "400"},
          {"fg-color", "65535,0,32896"}},
         "Sans/Sans-Regular/1300 255 0 128"},
        // As in style sheets.
        {{{"font-family", "\"DejaVu Sans\", serif"},
          {"font-size", "13px"},
          {"font-weight", "bold"},
          {"color", "rgb(1, 2, 3)"}},
         "DejaVu Sans/DejaVuSans-Bold/1300 1 2 3"},
        {{{"family-name", "Arial Black"}, {"weight", "400"}}, "Arial Black/Regular/-"},
        // Chromium: the family of the weight, and no word of the weight itself.
        {{{"family-name", "Inter Semi Bold"}}, "Inter/Inter-SemiBold/-"},
        {{{"family-name", "Inter Display Extra Light"}}, "Inter Display/InterDisplay-ExtraLight/-"},
        {{{"family-name", "Segoe UI black"}}, "Segoe UI/SegoeUI-Black/-"},
        {{{"family-name", "Helvetica-Light"}}, "Helvetica-Light/-/-"},
        {{{"family-name", "Black"}}, "Black/-/-"},
        {{{"family-name", "Inter"}, {"weight", "580"}}, "Inter/Inter-SemiBold/-"},
        {{{"weight", "600"}}, "-/SemiBold/-"},
        // What makes no sense is left out.
        {{{"family-name", " "}, {"size", "huge"}, {"weight", "-1"}, {"fg-color", "red"}}, ""},
        {{{"size", "-10pt"}, {"fg-color", "1,2"}}, ""},
        {{{"family-name", "Inter"}, {"size", "0.01pt"}}, "Inter/-/-"},
        {{{"size", "1e999"}, {"fg-color", "70000,0,0"}, {"weight", "nan"}}, ""},
        {{}, ""},
    };
    for (const auto& [attributes, expected] : cases) {
        EXPECT_EQ(described(attributes), expected);
    }
}

TEST(TextAttributes, AreUnderstoodAsTheToolkitMeansThem) {
    constexpr FontHabits gtk{.scalesSize = true};
    constexpr FontHabits libreOffice{.weights = FontHabits::Weights::ofLibreOffice};
    const struct {
        TextAttributes attributes;
        const FontHabits& habits;
        std::string expected;
    } cases[] = {
        // Whole points of 11 and 15 pixels.
        {{{"size", "8"}}, gtk, "-/-/1100"},
        {{{"size", "11"}}, gtk, "-/-/1500"},
        {{{"size", "10"}, {"scale", "1.2"}}, gtk, "-/-/1600"},
        {{{"size", "10"}, {"scale", "0.833333"}}, gtk, "-/-/1100"},
        {{{"size", "10"}, {"scale", "0"}}, gtk, "-/-/1300"},
        {{{"size", "10"}, {"scale", "1e300"}}, gtk, "-/-/1300"},
        {{{"size", "10"}, {"scale", "x"}}, gtk, "-/-/1300"},
        // Only the width of the letters.
        {{{"size", "12"}, {"scale", "1.5"}, {"weight", "600"}}, libreOffice, "-/Bold/1600"},
        {{{"size", "11.5"}, {"weight", "440"}}, libreOffice, "-/SemiBold/1500"},
        // Its labels.
        {{{"size", "12"}, {"scale", "0"}, {"weight", "20"}}, libreOffice, "-/Regular/1200"},
        {{{"size", "12"}, {"weight", "123"}}, libreOffice, "-/-/1600"},
        {{}, libreOffice, ""},
    };
    for (const auto& [attributes, habits, expected] : cases) {
        EXPECT_EQ(described(attributes, habits), expected);
    }
}

TEST(TextAttributes, HaveSizesInTheUnitsOfTheirPlaces) {
    // 18 pixels of a desktop of 1.5, as GTK 4 tells them; units of two pixels on one of 2.
    constexpr FontHabits habits{.inOwnUnits = true};
    for (const auto& [size, pointsPerUnit, expected] :
         {std::tuple("18", 1 / 1.5, 12.0), std::tuple("13", 1.0, 13.0)}) {
        const auto run = runAttributes({{"size", size}}, habits, pointsPerUnit);
        const auto font = *run.at("AXFont").as<std::shared_ptr<const AXDictionary>>();
        EXPECT_EQ(font->at("AXFontSize").as<AXNumber>()->value, expected);
    }
}

} // namespace
} // namespace lumetry::atspi
