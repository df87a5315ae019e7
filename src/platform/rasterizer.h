#pragma once

#include "base/bitmap.h"
#include "platform/display_list.h"

namespace lumetry {

/// Whether edges are smoothed into what lies behind the surface.
enum class Edges {
    smooth, ///< for a translucent surface
    hard,   ///< for a surface that is either there or not
};

/// Turns drawing into pixels.
class Rasterizer : public TextMetrics {
public:
    /// Draws the part of the list inside the area over transparent black.
    /// @param list in pixels of the view
    /// @param area whole pixels of the view
    /// @return area.width × area.height pixels, the first row being the top of the area
    [[nodiscard]] virtual Bitmap rasterize(const DisplayList& list, const Rect& area,
                                           Edges edges) const = 0;
};

} // namespace lumetry
