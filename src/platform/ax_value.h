#pragma once

#include "base/color.h"
#include "base/geometry.h"
#include "platform/ax_ui_element.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <type_traits>
#include <utility>
#include <variant>
#include <vector>

namespace lumetry {

/// A range of characters (CFRange): the first one and how many.
struct AXRange {
    std::int64_t location = 0;
    std::int64_t length = 0;

    friend bool operator==(const AXRange&, const AXRange&) = default;
};

/// A floating-point number object (NSNumber).
struct AXNumber {
    double value = 0;

    friend bool operator==(const AXNumber&, const AXNumber&) = default;
};

/// A font object of the platform (NSFont).
struct PlatformFont {
    std::string fontName;
    std::optional<std::string> familyName;
    double pointSize = 0;
    int weight = 0; ///< on the font manager's scale of 0 to 15

    friend bool operator==(const PlatformFont&, const PlatformFont&) = default;
};

/// Names to values (NSDictionary with string keys).
using AXDictionary = std::map<std::string, AXValue, std::less<>>;

/// A stretch of text whose characters share their attributes.
struct AXTextRun {
    AXRange range;
    std::shared_ptr<const AXDictionary> attributes;
};

/// Text with attributes on runs of its characters (NSAttributedString).
struct AXAttributedString {
    std::string text;
    std::vector<AXTextRun> runs;
};

/// A range between two text markers, meaningful only to the process that made it; passed back to
/// it unchanged.
struct AXTextMarkerRange {
    std::shared_ptr<const void> opaque;

    friend bool operator==(const AXTextMarkerRange&, const AXTextMarkerRange&) = default;
};

template<typename Kind, typename Variant>
inline constexpr bool isAlternative = false;
template<typename Kind, typename... Kinds>
inline constexpr bool isAlternative<Kind, std::variant<Kinds...>> = (std::is_same_v<Kind, Kinds> ||
                                                                     ...);

/// The value of an accessibility attribute: exactly one of the kinds that attributes have.
struct AXValue {
    using Variant =
        std::variant<std::string, std::int64_t, AXNumber, bool, AXUIElement,
                     std::vector<AXUIElement>, Point, Size, AXRange,
                     std::shared_ptr<const AXAttributedString>, std::shared_ptr<const AXDictionary>,
                     Color, PlatformFont, AXTextMarkerRange>;

    Variant variant;

    AXValue(const char* text) : variant(std::string(text)) {}
    template<typename Kind>
    requires isAlternative<Kind, Variant> AXValue(Kind value)
        : variant(std::in_place_type<Kind>, std::move(value)) {}

    /// The value when it is of that kind; a value of another kind counts as absent.
    template<typename Kind>
    [[nodiscard]] std::optional<Kind> as() const {
        if (const auto* value = std::get_if<Kind>(&variant)) {
            return *value;
        }
        return std::nullopt;
    }
};

} // namespace lumetry
