#pragma once

#include "base/bitmap.h"
#include "base/color.h"
#include "base/geometry.h"

#include <cstdint>
#include <optional>

namespace lumetry {

class ScreenCapture;

/// What an element's surface looks like, as far as it exists on a screen or in a window. All fields
/// are absent when no colour dominates.
struct SurfaceInfo {
    std::optional<Color> fill; ///< the dominant colour
    std::optional<Color> ink;  ///< the strongest colour that stands out from it: text, an icon
    std::optional<int> radius; ///< of the corners, in whole points, at least 2

    friend bool operator==(const SurfaceInfo&, const SurfaceInfo&) = default;
};

/// The surface of an element.
/// @param frame of the element, in accessibility space
[[nodiscard]] SurfaceInfo analyzeSurface(ScreenCapture& capture, std::uint32_t windowNumber,
                                         const Rect& frame);

/// The same from a picture of the element that was drawn at the given scale.
/// @param size of the element in points
/// @param pixelsPerPoint of the picture, at most 1
[[nodiscard]] SurfaceInfo analyzeSurfaceIn(const Bitmap& picture, const Size& size,
                                           double pixelsPerPoint);

} // namespace lumetry
