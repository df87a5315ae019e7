#pragma once

#include "base/geometry.h"
#include "platform/ax_ui_element.h"

#include <cstddef>
#include <optional>
#include <string>

namespace lumetry {

class Accessibility;

/// The distances between a component's edges and the box around its children, as a padding value in
/// whole points: "12px", "8px 16px" or top, right, bottom and left. Absent when there is nothing to
/// measure or the measurement is doubtful.
/// @param frame of the component, in accessibility space
/// @param guarded for components that may be no more than a group: tighter limits
[[nodiscard]] std::optional<std::string> axPadding(Accessibility& accessibility,
                                                   const AXUIElement& element, const Rect& frame,
                                                   bool guarded);

/// How the items of a collection follow each other. Sizes and distances in whole points.
struct CollectionGap {
    double gap = 0;        ///< the typical space between neighbours
    std::size_t count = 0; ///< how many items the collection has
    double item = 0;       ///< the typical height of an item, width in a horizontal collection
    bool vertical = true;

    friend bool operator==(const CollectionGap&, const CollectionGap&) = default;
};

/// The spacing of an element's children. Absent when they are fewer than 2 or more than 300, or
/// when they do not follow each other regularly.
/// @param rounding as frameRounding says; neighbours that overlap by no more touch
[[nodiscard]] std::optional<CollectionGap>
collectionGap(Accessibility& accessibility, const AXUIElement& element, double rounding = 0);

} // namespace lumetry
