#pragma once

#include "base/geometry.h"
#include "base/int_geometry.h"
#include "platform/screen_capture.h"

#include <optional>

namespace lumetry::x11 {

/// Which places on the root window the pixels of a captured bitmap stand for.
class CaptureGrid {
public:
    /// A pixel for each of the root's that the area covers. Absent when that is no size a bitmap
    /// can have.
    /// @param area root coordinates
    [[nodiscard]] static std::optional<CaptureGrid> of(const Rect& area);
    /// The area drawn at another size.
    [[nodiscard]] static std::optional<CaptureGrid> of(const Rect& area, IntSize size,
                                                       Interpolation interpolation);

    [[nodiscard]] IntSize size() const { return size_; }
    [[nodiscard]] Interpolation interpolation() const { return interpolation_; }
    /// From one pixel to the next, in pixels of the root window.
    [[nodiscard]] Size step() const;
    /// Whether each pixel is exactly one of the root's.
    [[nodiscard]] bool isPlain() const;
    /// Where the pixel of that column and row begins on the root window; of a plain grid, the
    /// root's pixel that it is.
    [[nodiscard]] Point placeOf(int column, int row) const;
    /// The pixels whose middle lies in the rectangle of the root window.
    [[nodiscard]] IntRect pixelsIn(const Rect& onRoot) const;

private:
    CaptureGrid(const Rect& area, IntSize size, Interpolation interpolation)
        : area_(area), size_(size), interpolation_(interpolation) {}

    Rect area_;
    IntSize size_;
    Interpolation interpolation_;
};

} // namespace lumetry::x11
