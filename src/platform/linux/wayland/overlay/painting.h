#pragma once

#include "base/int_geometry.h"
#include "platform/linux/tiles/tiles.h"
#include "platform/rasterizer.h"

#include <cstdint>

namespace lumetry::wayland {

/// Pixels as 0xAARRGGBB words, alpha premultiplied, row after row from the top without gaps.
struct Pixels {
    std::uint32_t* first = nullptr;
    IntSize size;
};

/// Puts what the plan says of a drawing where it belongs.
void paintTiles(const Pixels& pixels, const TilePlan& plan, const DisplayList& list,
                const Rasterizer& rasterizer);

} // namespace lumetry::wayland
