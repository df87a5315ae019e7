#pragma once

#include "base/geometry.h"
#include "platform/display_list.h"

#include <span>
#include <vector>

namespace lumetry::x11 {

/// How an area of a drawing gets onto the screen with as few pixels computed as can be. The parts
/// do not overlap. All rectangles are whole pixels of view space.
struct TilePlan {
    /// An area that has one and the same colour throughout.
    struct Uniform {
        Point sample; ///< lower-left corner of one of its pixels
        std::vector<Rect> areas;
    };

    std::vector<Rect> cleared; ///< untouched by any command
    std::vector<Uniform> uniform;
    std::vector<Rect> rasterized; ///< everything else

    [[nodiscard]] std::vector<Rect> all() const;
};

/// Divides what lies in the areas, and a little around them.
/// @param areas may overlap, reach out of the view, and lie anywhere
/// @param before the drawing that is there now, if it is: what looks the same in both is left out
[[nodiscard]] TilePlan planTiles(const DisplayList& list, std::span<const Rect> areas, Size view,
                                 const DisplayList* before = nullptr);

/// Whether the pieces leave nothing of the rectangle out.
[[nodiscard]] bool covers(std::span<const Rect> pieces, const Rect& rect);

} // namespace lumetry::x11
