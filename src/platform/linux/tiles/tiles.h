#pragma once

#include "base/int_geometry.h"
#include "platform/display_list.h"

#include <span>
#include <vector>

namespace lumetry {

/// How an area of a drawing gets onto the screen with as few pixels computed as can be. The parts
/// do not overlap. All rectangles are pixels of view space.
struct TilePlan {
    /// An area that has one and the same colour throughout.
    struct Uniform {
        IntPoint sample; ///< lower-left corner of one of its pixels
        std::vector<IntRect> areas;
    };
    /// An area along a straight edge: one colour in each of its columns, or in each of its rows.
    struct Striped {
        IntRect sample;             ///< one pixel of each column, or of each row
        bool upright = false;       ///< the stripes are columns
        std::vector<IntRect> areas; ///< all with the sample's columns, or rows
    };

    std::vector<IntRect> cleared; ///< untouched by any command
    std::vector<Uniform> uniform;
    std::vector<Striped> striped;
    std::vector<IntRect> rasterized; ///< everything else

    [[nodiscard]] std::vector<IntRect> all() const;
};

/// Divides what lies in the areas, and a little around them.
/// @param areas may overlap, reach out of the view, and lie anywhere
/// @param before the drawing that is there now, if it is: what looks the same in both is left out
[[nodiscard]] TilePlan planTiles(const DisplayList& list, std::span<const Rect> areas, IntSize view,
                                 const DisplayList* before = nullptr);

/// Whether the pieces leave nothing of the rectangle out.
[[nodiscard]] bool covers(std::span<const IntRect> pieces, const IntRect& rect);

} // namespace lumetry
