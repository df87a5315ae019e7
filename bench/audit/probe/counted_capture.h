#pragma once

#include "platform/screen_capture.h"

#include <cstddef>

namespace lumetry {

/// Another screen capture, with a count of what is asked of it.
class CountedCapture final : public ScreenCapture {
public:
    explicit CountedCapture(ScreenCapture& inner) : inner_(inner) {}

    [[nodiscard]] std::size_t captures() const { return captures_; }

    [[nodiscard]] std::optional<Bitmap> captureBelow(const Rect& area,
                                                     std::uint32_t windowNumber) override {
        ++captures_;
        return inner_.captureBelow(area, windowNumber);
    }
    [[nodiscard]] std::optional<Bitmap> captureBelow(const Rect& area, std::uint32_t windowNumber,
                                                     IntSize size,
                                                     Interpolation interpolation) override {
        ++captures_;
        return inner_.captureBelow(area, windowNumber, size, interpolation);
    }

private:
    ScreenCapture& inner_;
    std::size_t captures_ = 0;
};

} // namespace lumetry
