#include "platform/linux/atspi/tree/text_attributes.h"

#include "base/text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <memory>
#include <optional>
#include <string_view>
#include <utility>

namespace lumetry::atspi {
namespace {

/// The value under the first of the names that is there: toolkits differ in what they call it.
std::optional<std::string> valueOf(const TextAttributes& attributes,
                                   std::initializer_list<std::string_view> names) {
    for (const std::string_view name : names) {
        const auto found = attributes.find(name);
        if (found != attributes.end()) {
            return trimmed(found->second);
        }
    }
    return std::nullopt;
}

/// A number at the start of the text, and what follows it.
std::optional<std::pair<double, std::string_view>> leadingNumber(std::string_view text) {
    double number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || !std::isfinite(number)) {
        return std::nullopt;
    }
    return std::pair(number, std::string_view(end, text.data() + text.size()));
}

/// A font size in whole pixels; sizes without a unit are points.
std::optional<double> pixelsOf(std::string_view size, const FontHabits& habits, double scale) {
    constexpr double pixelsPerPoint = 96.0 / 72;
    constexpr double largest = 10000;
    const auto number = leadingNumber(size);
    if (!number || number->first <= 0 || number->first > largest) {
        return std::nullopt;
    }
    const bool inPixels = habits.inOwnUnits || number->second.starts_with("px");
    const double pixels = std::round(number->first * (inPixels ? 1 : pixelsPerPoint) * scale);
    return pixels > 0 ? std::optional(pixels) : std::nullopt;
}

/// The factor of the size that is told, of those that can be one.
double scaleOf(const TextAttributes& attributes) {
    constexpr double largest = 100;
    const auto scale = leadingNumber(valueOf(attributes, {"scale"}).value_or(""));
    return scale && scale->first > 0 && scale->first <= largest ? scale->first : 1;
}

struct WeightStep {
    double told = 0;
    std::string_view styleSheet;
};

constexpr std::array libreOfficeWeights = std::to_array<WeightStep>({
    {4, "100"},   {8, "200"},   {12, "300"},  {16, "300"},  {20, "400"},
    {24, "500"},  {28, "600"},  {32, "700"},  {36, "800"},  {40, "900"},
    {200, "100"}, {240, "200"}, {300, "300"}, {360, "300"}, {400, "400"},
    {440, "600"}, {600, "700"}, {700, "800"}, {800, "900"},
});

/// Labels of LibreOffice: their weights end before those of its texts begin.
constexpr double heaviestLabel = 40;

/// The same with its weight and, of labels, its size as in style sheets.
TextAttributes fromLibreOffice(TextAttributes attributes) {
    const auto weight = attributes.find("weight");
    const auto number = weight == attributes.end() ? std::nullopt : leadingNumber(weight->second);
    const auto* const step =
        number ? std::ranges::find(libreOfficeWeights, number->first, &WeightStep::told)
               : libreOfficeWeights.end();
    if (step == libreOfficeWeights.end()) {
        attributes.erase("weight");
        return attributes;
    }
    weight->second = step->styleSheet;
    const auto size = attributes.find("size");
    if (step->told <= heaviestLabel && size != attributes.end()) {
        size->second += "px";
    }
    return attributes;
}

/// The name of a weight in a font's name; empty for none.
std::string_view weightName(std::string_view weight) {
    constexpr std::array<std::string_view, 9> names = {"Thin",    "ExtraLight", "Light",
                                                       "Regular", "Medium",     "SemiBold",
                                                       "Bold",    "ExtraBold",  "Black"};
    constexpr double step = 100;
    constexpr double largest = 1000;
    if (weight == "normal") {
        return "Regular";
    }
    if (weight == "bold") {
        return "Bold";
    }
    const auto number = leadingNumber(weight);
    if (!number || number->first < 1 || number->first > largest) {
        return {};
    }
    const double nearest = std::clamp(std::round(number->first / step), 1.0, 9.0);
    return names[static_cast<std::size_t>(nearest) - 1];
}

bool saysAWeight(std::string_view family) {
    const std::string lower = lowerCase(family);
    return std::ranges::any_of(
        std::to_array<std::string_view>(
            {"bold", "black", "heavy", "medium", "light", "thin", "regular"}),
        [&](std::string_view word) { return lower.find(word) != std::string::npos; });
}

struct Face {
    std::string family;
    std::string weight; ///< as in a font's name; empty for none
};

/// Fonts with more weights than regular and bold have families of their own for the others, such as
/// "Inter Semi Bold", and where one is used some applications tell of no weight besides.
Face faceOf(const std::string& family) {
    // Those of two words before those they end in.
    constexpr std::array weights = std::to_array<std::string_view>(
        {" Extra Bold", " ExtraBold", " Ultra Bold", " UltraBold", " Semi Bold", " SemiBold",
         " Demi Bold", " DemiBold", " Bold", " Black", " Heavy", " Medium", " Extra Light",
         " ExtraLight", " Ultra Light", " UltraLight", " Light", " Thin"});
    const std::string lower = lowerCase(family);
    const auto* const found = std::ranges::find_if(
        weights, [&](std::string_view weight) { return lower.ends_with(lowerCase(weight)); });
    if (found == weights.end() || found->size() >= family.size()) {
        return {family, ""};
    }
    return {family.substr(0, family.size() - found->size()), removingOccurrences(*found, " ")};
}

/// Family and weight in one name, as fonts are called. A family with a weight in its own name, such
/// as "Arial Black", would be taken for it.
std::string fontName(const std::string& family, std::string_view weight) {
    const std::string suffix(weight);
    return family.empty() || saysAWeight(family) ? suffix
                                                 : removingOccurrences(family, " ") + "-" + suffix;
}

/// Three numbers, whatever stands around and between them.
std::optional<std::array<double, 3>> threeNumbers(std::string_view text) {
    std::array<double, 3> numbers{};
    for (double& number : numbers) {
        const auto start = text.find_first_of("0123456789");
        if (start == std::string_view::npos) {
            return std::nullopt;
        }
        text.remove_prefix(start);
        const auto leading = leadingNumber(text);
        if (!leading) {
            return std::nullopt;
        }
        number = leading->first;
        text = leading->second;
    }
    return numbers;
}

/// @param color components of 0 to 255, or of 0 to 65535 where one is larger than that
std::optional<Color> colorOf(std::string_view color) {
    constexpr double byteLimit = 255;
    constexpr double wordLimit = 65535;
    const auto numbers = threeNumbers(color);
    if (!numbers) {
        return std::nullopt;
    }
    const double largest = std::ranges::max(*numbers);
    if (largest > wordLimit) {
        return std::nullopt;
    }
    const double limit = largest > byteLimit ? wordLimit : byteLimit;
    const auto& [red, green, blue] = *numbers;
    return Color{red / limit, green / limit, blue / limit, 1};
}

/// The family without quotes, and only the first of a list.
std::string familyOf(std::string_view family) {
    family = family.substr(0, family.find(','));
    return trimmed(removingOccurrences(removingOccurrences(family, "\""), "'"));
}

} // namespace

AXDictionary runAttributes(const TextAttributes& told, const FontHabits& habits,
                           double pointsPerUnit) {
    const TextAttributes attributes =
        habits.weights == FontHabits::Weights::ofLibreOffice ? fromLibreOffice(told) : told;
    const double scale =
        (habits.scalesSize ? scaleOf(attributes) : 1) * (habits.inOwnUnits ? pointsPerUnit : 1);
    AXDictionary font;
    std::string family = familyOf(valueOf(attributes, {"family-name", "font-family"}).value_or(""));
    std::string weight(weightName(valueOf(attributes, {"weight", "font-weight"}).value_or("")));
    if (weight.empty()) {
        Face face = faceOf(family);
        family = std::move(face.family);
        weight = std::move(face.weight);
    }
    if (!family.empty()) {
        font.insert_or_assign("AXFontFamily", AXValue(family));
    }
    if (const auto size =
            pixelsOf(valueOf(attributes, {"size", "font-size"}).value_or(""), habits, scale)) {
        font.insert_or_assign("AXFontSize", AXValue(AXNumber{*size}));
    }
    if (!weight.empty()) {
        font.insert_or_assign("AXFontName", AXValue(fontName(family, weight)));
    }
    AXDictionary run;
    if (!font.empty()) {
        run.insert_or_assign("AXFont", AXValue(std::shared_ptr<const AXDictionary>(
                                           std::make_shared<AXDictionary>(std::move(font)))));
    }
    if (const auto color = colorOf(valueOf(attributes, {"fg-color", "color"}).value_or(""))) {
        run.insert_or_assign("AXForegroundColor", AXValue(*color));
    }
    return run;
}

} // namespace lumetry::atspi
