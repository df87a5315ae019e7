#pragma once

#include "platform/picture_capture.h"

#include <optional>
#include <utility>

namespace lumetry {

/// A screen that shows a picture, which begins at the origin of accessibility space; one that
/// cannot be read until there is a picture.
class FakeScreenCapture final : public ScreenCapture {
public:
    void paint(Bitmap picture) { picture_.emplace(std::move(picture)); }

    [[nodiscard]] std::optional<Bitmap> captureBelow(const Rect& area,
                                                     std::uint32_t windowNumber) override {
        note(area, windowNumber);
        return picture_ && !refused ? picture_->captureBelow(area, windowNumber) : std::nullopt;
    }
    [[nodiscard]] std::optional<Bitmap> captureBelow(const Rect& area, std::uint32_t windowNumber,
                                                     IntSize size,
                                                     Interpolation interpolation) override {
        note(area, windowNumber);
        lastSize = size;
        lastInterpolation = interpolation;
        return picture_ && !refused
                   ? picture_->captureBelow(area, windowNumber, size, interpolation)
                   : std::nullopt;
    }

    bool refused = false;
    int captures = 0;
    std::uint32_t lastWindowNumber = 0; ///< below which the last capture was
    Rect lastArea;
    IntSize lastSize;
    Interpolation lastInterpolation = Interpolation::none;

private:
    void note(const Rect& area, std::uint32_t windowNumber) {
        ++captures;
        lastArea = area;
        lastWindowNumber = windowNumber;
    }

    std::optional<PictureCapture> picture_;
};

} // namespace lumetry
