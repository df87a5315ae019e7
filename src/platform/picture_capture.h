#pragma once

#include "platform/screen_capture.h"

#include <utility>

namespace lumetry {

/// A picture in place of the screen.
class PictureCapture final : public ScreenCapture {
public:
    /// @param scale pixels of the picture for each point
    /// @param origin of its top-left corner, in accessibility space
    explicit PictureCapture(Bitmap picture, double scale = 1, Point origin = {})
        : picture_(std::move(picture)), scale_(scale), origin_(origin) {}

    [[nodiscard]] const Bitmap& picture() const { return picture_; }
    [[nodiscard]] Bitmap takePicture() { return std::move(picture_); }
    /// The pixels of the picture that an area of accessibility space covers; empty for none.
    [[nodiscard]] IntRect pixelsIn(const Rect& area) const;

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
    Point origin_;
};

/// The size of an area of pixels, rounded to whole ones. Absent when that is no size a bitmap can
/// have.
[[nodiscard]] std::optional<IntSize> pixelSizeOf(const Rect& area);

} // namespace lumetry
