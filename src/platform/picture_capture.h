#pragma once

#include "platform/screen_capture.h"

#include <utility>

namespace lumetry {

/// A picture in place of the screen. Its top-left corner is the origin of accessibility space.
class PictureCapture final : public ScreenCapture {
public:
    /// @param scale pixels of the picture for each point
    explicit PictureCapture(Bitmap picture, double scale = 1)
        : picture_(std::move(picture)), scale_(scale) {}

    [[nodiscard]] std::optional<Bitmap> captureBelow(const Rect& area,
                                                     std::uint32_t windowNumber) override;
    [[nodiscard]] std::optional<Bitmap> captureBelow(const Rect& area, std::uint32_t windowNumber,
                                                     IntSize size,
                                                     Interpolation interpolation) override;

private:
    [[nodiscard]] Rect pixelsOf(const Rect& area) const;
    [[nodiscard]] std::optional<Bitmap> drawn(const Rect& pixels, IntSize size,
                                              Interpolation interpolation) const;

    Bitmap picture_;
    double scale_;
};

/// The size of an area of pixels, rounded to whole ones. Absent when that is no size a bitmap can
/// have.
[[nodiscard]] std::optional<IntSize> pixelSizeOf(const Rect& area);

} // namespace lumetry
