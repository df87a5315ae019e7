#include "probe/typography.h"

#include "base/number_text.h"
#include "base/text.h"
#include "platform/accessibility.h"
#include "probe/ax_access.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <span>
#include <utility>
#include <vector>

namespace lumetry {
namespace {

constexpr std::string_view separator = " · ";
constexpr std::size_t mostChildrenSearched = 8;

constexpr std::array textContainerRoles = std::to_array<std::string_view>({
    "AXWindow",
    "AXScrollArea",
    "AXOutline",
    "AXList",
    "AXTable",
    "AXGrid",
    "AXToolbar",
});

const AXValue* attributeOfFirst(const AXAttributedString& text, std::string_view name) {
    for (const AXTextRun& run : text.runs) {
        if (run.attributes && run.range.location <= 0 && run.range.length > 0 &&
            run.range.location + run.range.length > 0) {
            const auto found = run.attributes->find(name);
            return found == run.attributes->end() ? nullptr : &found->second;
        }
    }
    return nullptr;
}

template<typename Kind>
std::optional<Kind> attributeOfFirst(const AXAttributedString& text, std::string_view name) {
    const AXValue* value = attributeOfFirst(text, name);
    return value ? value->as<Kind>() : std::nullopt;
}

template<typename Kind>
std::optional<Kind> entry(const AXDictionary& dictionary, std::string_view name) {
    const auto found = dictionary.find(name);
    return found == dictionary.end() ? std::nullopt : found->second.as<Kind>();
}

/// The entry when it is a number of either kind, without its fraction.
std::optional<long long> integerEntry(const AXDictionary& dictionary, std::string_view name) {
    if (const auto number = entry<AXNumber>(dictionary, name)) {
        return integerValue(number->value);
    }
    return entry<std::int64_t>(dictionary, name);
}

/// The attributed string of an answer; absent when it is none or has no characters.
std::optional<AttributedStringRef> nonEmpty(const std::optional<AXValue>& answer) {
    const auto text = answer ? answer->as<AttributedStringRef>() : std::nullopt;
    return text && *text && !(*text)->text.empty() ? text : std::nullopt;
}

/// Asks all elements together for what tells whether they have text.
void prefetchText(Accessibility& accessibility, std::span<const AXUIElement> elements) {
    constexpr std::array<std::string_view, 2> attributes = {"AXNumberOfCharacters", "AXValue"};
    accessibility.prefetch(elements, attributes);
}

std::optional<TextInfo> ownTextInfo(const AXUIElement& element) {
    auto text = axAttributedFirstChar(element);
    if (!text) {
        text = axAttributedViaTextMarker(element);
    }
    if (!text) {
        return std::nullopt;
    }
    TextInfo info = {fontFrom(**text), colorFrom(**text)};
    return info.font || info.color ? std::optional(std::move(info)) : std::nullopt;
}

std::string fontRow(const AXDictionary& font) {
    const std::string name = entry<std::string>(font, "AXFontName").value_or("");
    auto family = entry<std::string>(font, "AXFontFamily");
    if (!family) {
        family = entry<std::string>(font, "AXVisibleName");
    }
    if (!family) {
        family = name;
    }
    const long long size = integerEntry(font, "AXFontSize").value_or(0);
    const std::string pixels = std::to_string(size) + "px";
    if (family->empty()) {
        constexpr long long largestTextSize = 19;
        const std::string assumed = size > largestTextSize ? "SF Pro Display" : "SF Pro Text";
        return size >= 1 ? assumed + std::string(separator) + pixels + " · ~system" : "";
    }
    std::string row = cleanFamily(*family, size);
    if (size >= 1) {
        row += std::string(separator) + pixels;
    }
    const std::string weight = weightFromName(name);
    return weight.empty() ? row : row + std::string(separator) + weight;
}

} // namespace

TextInfo axTextInfoDeep(Accessibility& accessibility, const AXUIElement& element) {
    prefetchText(accessibility, {&element, 1});
    if (auto info = ownTextInfo(element)) {
        return *info;
    }
    if (const auto parent = axParent(element)) {
        prefetchText(accessibility, {&*parent, 1});
        if (auto info = ownTextInfo(*parent)) {
            return *info;
        }
    }
    const std::string role = axString(element, "AXRole").value_or("");
    if (std::ranges::find(textContainerRoles, role) != textContainerRoles.end()) {
        return {};
    }
    const auto children = axChildren(element);
    if (!children || children->size() > mostChildrenSearched) {
        return {};
    }
    prefetchText(accessibility, *children);
    for (const AXUIElement& child : *children) {
        if (auto info = ownTextInfo(child)) {
            return *info;
        }
    }
    return {};
}

std::optional<AttributedStringRef> axAttributedFirstChar(const AXUIElement& element) {
    const auto answer = element.copyAttributeValue("AXNumberOfCharacters");
    std::int64_t count = answer ? answer->as<std::int64_t>().value_or(0) : 0;
    if (count == 0) {
        const auto text = axString(element, "AXValue");
        count = text && !text->empty() ? 1 : 0;
    }
    if (count < 1) {
        return std::nullopt;
    }
    return nonEmpty(
        element.copyParameterizedAttributeValue("AXAttributedStringForRange", AXRange{0, 1}));
}

std::optional<AttributedStringRef> axAttributedViaTextMarker(const AXUIElement& element) {
    const auto range =
        element.copyParameterizedAttributeValue("AXTextMarkerRangeForUIElement", element);
    return range ? nonEmpty(element.copyParameterizedAttributeValue(
                       "AXAttributedStringForTextMarkerRange", *range))
                 : std::nullopt;
}

std::optional<std::string> fontFrom(const AXAttributedString& text) {
    if (const auto font = attributeOfFirst<PlatformFont>(text, "NSFont")) {
        const double size = std::round(font->pointSize);
        return cleanFamily(font->familyName.value_or(font->fontName), integerValue(size)) +
               std::string(separator) + wholeNumber(size) + "px" + std::string(separator) +
               weightName(*font);
    }
    if (const auto font = attributeOfFirst<std::shared_ptr<const AXDictionary>>(text, "AXFont")) {
        std::string row = *font ? fontRow(**font) : std::string();
        return row.empty() ? std::nullopt : std::optional(std::move(row));
    }
    return std::nullopt;
}

std::optional<Color> colorFrom(const AXAttributedString& text) {
    const auto color = attributeOfFirst<Color>(text, "NSColor");
    return color ? color : attributeOfFirst<Color>(text, "AXForegroundColor");
}

std::string cleanFamily(const std::string& family, long long size) {
    constexpr long long smallestDisplaySize = 20;
    const std::string lower = lowerCase(family);
    const auto contains = [&](std::string_view part) {
        return lower.find(part) != std::string::npos;
    };
    if (!lower.starts_with('.') && !contains("system font")) {
        return family;
    }
    if (contains("rounded")) {
        return "SF Pro Rounded";
    }
    if (contains("mono")) {
        return "SF Mono";
    }
    const std::string kind = contains("compact") ? "SF Compact" : "SF Pro";
    return kind + (size < smallestDisplaySize ? " Text" : " Display");
}

std::string weightName(const PlatformFont& font) {
    if (font.weight < 4) {
        return "light";
    }
    if (font.weight <= 5) {
        return "regular";
    }
    if (font.weight <= 7) {
        return "medium";
    }
    return font.weight <= 9 ? "semibold" : "bold";
}

std::string weightFromName(std::string_view name) {
    // The first that is contained decides, so the longer words come before those inside them.
    constexpr std::array words = std::to_array<std::pair<std::string_view, std::string_view>>({
        {"extrabold", "extrabold"},
        {"ultrabold", "extrabold"},
        {"semibold", "semibold"},
        {"demibold", "semibold"},
        {"black", "black"},
        {"heavy", "black"},
        {"bold", "bold"},
        {"medium", "medium"},
        {"extralight", "extralight"},
        {"ultralight", "extralight"},
        {"thin", "thin"},
        {"light", "light"},
        {"regular", "regular"},
    });
    const std::string lower = lowerCase(name);
    const auto* const found = std::ranges::find_if(
        words, [&](const auto& word) { return lower.find(word.first) != std::string::npos; });
    return found == words.end() ? std::string() : std::string(found->second);
}

} // namespace lumetry
