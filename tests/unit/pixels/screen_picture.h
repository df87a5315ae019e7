#pragma once

#include "platform/picture_capture.h"

#include <optional>
#include <utility>

namespace lumetry {

/// A picture in place of the screen that remembers what was asked for last.
class ScreenPicture final : public ScreenCapture {
public:
    explicit ScreenPicture(std::optional<Bitmap> picture) : picture_(std::move(picture)) {}

    [[nodiscard]] std::optional<Bitmap> captureBelow(const Rect& wanted,
                                                     std::uint32_t number) override {
        remember(wanted, number);
        return picture_ ? PictureCapture(*picture_).captureBelow(wanted, number) : std::nullopt;
    }
    [[nodiscard]] std::optional<Bitmap> captureBelow(const Rect& wanted, std::uint32_t number,
                                                     PixelSize wantedSize,
                                                     Interpolation wantedInterpolation) override {
        remember(wanted, number);
        size = wantedSize;
        interpolation = wantedInterpolation;
        return picture_ ? PictureCapture(*picture_).captureBelow(wanted, number, wantedSize,
                                                                 wantedInterpolation)
                        : std::nullopt;
    }

    int captures = 0;
    Rect area;
    std::uint32_t windowNumber = 0;
    PixelSize size;
    Interpolation interpolation = Interpolation::none;

private:
    void remember(const Rect& wanted, std::uint32_t number) {
        ++captures;
        area = wanted;
        windowNumber = number;
    }

    std::optional<Bitmap> picture_; ///< absent for a screen that cannot be read
};

} // namespace lumetry
