#include "audit/exact_color.h"

#include "pixels/color_sample.h"
#include "platform/picture_capture.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <unordered_map>

namespace lumetry {
namespace {

/// Whether the colours are shades of one, as an average of them takes them together.
bool isShade(const PixelColor& pixel, const PixelColor& other) {
    constexpr int largestDifference = 22;
    return std::abs(pixel.red - other.red) <= largestDifference &&
           std::abs(pixel.green - other.green) <= largestDifference &&
           std::abs(pixel.blue - other.blue) <= largestDifference;
}

PixelColor pixelColor(const Color& color) {
    const auto level = [](double value) { return static_cast<int>(std::lround(value * 255)); };
    return {level(color.red), level(color.green), level(color.blue)};
}

} // namespace

std::optional<Color> exactColor(PictureCapture& picture, const Rect& frame, const Color& estimate) {
    constexpr int fewSamples = 4096;
    const Bitmap& whole = picture.picture();
    const auto [left, top, width, height] = picture.pixelsIn(frame);
    const auto area = static_cast<double>(width) * height;
    const int step = std::max(1, static_cast<int>(std::sqrt(area / fewSamples)));
    const PixelColor wanted = pixelColor(estimate);
    std::unordered_map<std::uint32_t, std::size_t> counts;
    std::size_t shades = 0;
    for (int y = top; y < top + height; y += step) {
        for (int x = left; x < left + width; x += step) {
            const std::uint32_t pixel = whole.at(x, y);
            if (isShade(lumetry::pixelColor(pixel), wanted)) {
                ++counts[pixel];
                ++shades;
            }
        }
    }
    const auto most =
        std::ranges::max_element(counts, {}, [](const auto& entry) { return entry.second; });
    return most != counts.end() && 2 * most->second > shades
               ? std::optional(opaqueColor(lumetry::pixelColor(most->first)))
               : std::nullopt;
}

} // namespace lumetry
