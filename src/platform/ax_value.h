#pragma once

#include "base/color.h"
#include "base/geometry.h"
#include "platform/ax_ui_element.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
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

/// The value of an accessibility attribute: exactly one of the kinds that attributes have.
struct AXValue {
    using Variant = std::variant<std::string, std::int64_t, AXNumber, bool, AXUIElement,
                                 std::vector<AXUIElement>, Point, Size, AXRange,
                                 std::shared_ptr<const AXAttributedString>,
                                 std::shared_ptr<const AXDictionary>, Color, AXTextMarkerRange>;

    Variant variant;

    AXValue(const char* text) : variant(std::string(text)) {}
    template<typename Kind>
    requires std::constructible_from<Variant, std::in_place_type_t<Kind>, Kind> AXValue(Kind value)
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
