#pragma once

#include "base/color.h"
#include "base/geometry.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace lumetry {

class PictureCapture;

/// The colours of an area of a picture, each with how many pixels have it.
class AreaColors {
public:
    /// @param area accessibility space; what the picture does not have of it is left out
    /// @param mostPixels that are looked at, spread over the area
    AreaColors(const PictureCapture& picture, const Rect& area, int mostPixels);

    /// The colour that most pixels have among those that an estimate was made from. Absent where
    /// no single one prevails, as in a gradient.
    /// @param estimate the dominant colour of an element, with its shades
    [[nodiscard]] std::optional<Color> evenFill(const Color& estimate) const;
    /// The colour of what is drawn on a fill: that of the pixels which stand out the most, as the
    /// edges of letters are blends of both. Absent where hardly anything stands out.
    [[nodiscard]] std::optional<Color> inkOn(const Color& fill) const;
    /// Whether some pixels have the colour, or nearly so.
    [[nodiscard]] bool contains(const Color& color) const;

private:
    struct Counted {
        std::uint32_t pixel = 0;
        std::size_t count = 0;
    };

    std::vector<Counted> colors_; ///< without missing pixels
};

} // namespace lumetry
