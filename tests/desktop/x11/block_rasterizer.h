#pragma once

#include "platform/rasterizer.h"

#include <cstddef>
#include <utility>

namespace lumetry::desktop {

/// Draws in blocks, so that a test can tell every pixel: rounded rectangles without their
/// rounding, lines and outlines as filled rectangles, text as its line box. Counts the pixels.
class BlockRasterizer final : public Rasterizer {
public:
    [[nodiscard]] Size measure(std::string_view text, const Font& font) const override;
    [[nodiscard]] Bitmap rasterize(const DisplayList& list, const Rect& area,
                                   Edges edges) const override;

    /// How many pixels have been drawn since.
    [[nodiscard]] std::size_t takeCount() const { return std::exchange(count_, 0); }

private:
    mutable std::size_t count_ = 0;
};

} // namespace lumetry::desktop
