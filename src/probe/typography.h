#pragma once

#include "base/color.h"
#include "platform/ax_ui_element.h"
#include "platform/ax_value.h"

#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace lumetry {

class Accessibility;

/// How text is set, as far as the application tells.
struct TextInfo {
    std::optional<std::string> font; ///< the row's text, such as "Inter · 14px · semibold"
    std::optional<Color> color;      ///< of the first character

    friend bool operator==(const TextInfo&, const TextInfo&) = default;
};

/// The typography of an element: its own, else its parent's, else that of the first of up to eight
/// children that tells. Both fields are absent when nobody does.
[[nodiscard]] TextInfo axTextInfoDeep(Accessibility& accessibility, const AXUIElement& element);

using AttributedStringRef = std::shared_ptr<const AXAttributedString>;

/// The first character of the element's text with its attributes. Absent when the element has no
/// text or does not tell.
[[nodiscard]] std::optional<AttributedStringRef> axAttributedFirstChar(const AXUIElement& element);
/// The element's whole text with its attributes, asked for through text markers.
[[nodiscard]] std::optional<AttributedStringRef>
axAttributedViaTextMarker(const AXUIElement& element);

/// Family, size and weight of the first character as the text of the font row. Absent when the text
/// carries no font.
[[nodiscard]] std::optional<std::string> fontFrom(const AXAttributedString& text);
/// The foreground colour of the first character. Absent when the text carries none.
[[nodiscard]] std::optional<Color> colorFrom(const AXAttributedString& text);

/// The family under which designers know the system font, for the names that it goes by inside
/// applications; any other family unchanged.
/// @param size in whole points
[[nodiscard]] std::string cleanFamily(const std::string& family, long long size);
/// The word for a weight on the font manager's scale of 0 to 15.
[[nodiscard]] std::string weightName(const PlatformFont& font);
/// The weight word that a font's name contains ("Inter-SemiBold": "semibold"); empty for none.
[[nodiscard]] std::string weightFromName(std::string_view name);

} // namespace lumetry
