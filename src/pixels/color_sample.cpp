#include "pixels/color_sample.h"

#include "platform/screen_capture.h"

namespace lumetry {

Color opaqueColor(const PixelColor& pixel) {
    constexpr double most = 255;
    return {pixel.red / most, pixel.green / most, pixel.blue / most, 1};
}

std::optional<Color> sampleColor(ScreenCapture& capture, std::uint32_t windowNumber, Point point) {
    constexpr double reach = 2;
    const Rect area = {point.x - reach, point.y - reach, 2 * reach + 1, 2 * reach + 1};
    const auto bitmap = capture.captureBelow(area, windowNumber);
    if (!bitmap || bitmap->width < 1 || bitmap->height < 1) {
        return std::nullopt;
    }
    const std::uint32_t pixel = bitmap->at(bitmap->width / 2, bitmap->height / 2);
    return pixel == missingPixel ? std::nullopt : std::optional(opaqueColor(pixelColor(pixel)));
}

} // namespace lumetry
