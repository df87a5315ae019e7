#pragma once

#include "platform/screen_capture.h"

#include <utility>

namespace lumetry {

/// A picture in place of the screen. Its top-left corner is the origin of accessibility space, and
/// one of its pixels is one point.
class PictureCapture final : public ScreenCapture {
public:
    explicit PictureCapture(Bitmap picture) : picture_(std::move(picture)) {}

    [[nodiscard]] std::optional<Bitmap> captureBelow(const Rect& area,
                                                     std::uint32_t windowNumber) override;
    [[nodiscard]] std::optional<Bitmap> captureBelow(const Rect& area, std::uint32_t windowNumber,
                                                     PixelSize size,
                                                     Interpolation interpolation) override;

private:
    Bitmap picture_;
};

/// The whole pixels that an area of points covers at one pixel a point: its size rounded. Absent
/// when that is no size a bitmap can have.
[[nodiscard]] std::optional<PixelSize> pixelSizeOf(const Rect& area);

} // namespace lumetry
