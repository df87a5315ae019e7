#include "pixels/surface.h"

#include "base/color_metrics.h"
#include "pixels/color_sample.h"
#include "pixels/dominant_colors.h"
#include "platform/screen_capture.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <vector>

namespace lumetry {
namespace {

constexpr double smallestSide = 8;  ///< of an element, in points
constexpr double longestSide = 400; ///< of the picture, in pixels

std::optional<Color> inkOf(const AverageColor& ink, const Color& fill, std::size_t total) {
    constexpr std::size_t smallPicture = 600;
    constexpr std::size_t fewestInSmall = 12;
    constexpr double leastContrast = 1.6;
    const std::size_t fewest = total < smallPicture ? fewestInSmall : total / 50;
    if (ink.pixels < fewest) {
        return std::nullopt;
    }
    const Color color = opaqueColor(ink.color);
    return wcagContrast(color, fill) >= leastContrast ? std::optional(color) : std::nullopt;
}

bool isFill(const PixelColor& color, const PixelColor& fill) {
    constexpr int largestDifference = 22;
    return std::abs(color.red - fill.red) <= largestDifference &&
           std::abs(color.green - fill.green) <= largestDifference &&
           std::abs(color.blue - fill.blue) <= largestDifference;
}

/// For each corner that exists and whose diagonal meets the fill, the radius in pixels of a corner
/// that lets the diagonal in at that depth; ascending.
std::vector<double> cornerRadii(const Bitmap& picture, const PixelColor& fill) {
    // A rounded corner of radius r begins r × (1 - 1/√2) from the corner along each axis.
    constexpr double radiusPerStep = 3.414;
    std::vector<double> radii;
    for (const bool top : {true, false}) {
        for (const bool left : {true, false}) {
            for (int i = 0; i < std::min(picture.width, picture.height) / 2; ++i) {
                const int x = left ? i : picture.width - 1 - i;
                const int y = top ? i : picture.height - 1 - i;
                const std::uint32_t pixel = picture.at(x, y);
                if (pixel == missingPixel) {
                    break;
                }
                if (isFill(pixelColor(pixel), fill)) {
                    radii.push_back(i * radiusPerStep);
                    break;
                }
            }
        }
    }
    std::ranges::sort(radii);
    return radii;
}

std::optional<int> radiusOf(const Bitmap& picture, const PixelColor& fill, const Size& size,
                            double pixelsPerPoint) {
    constexpr std::size_t fewestCorners = 3;
    const auto radii = cornerRadii(picture, fill);
    if (radii.size() < fewestCorners) {
        return std::nullopt;
    }
    const double median = radii[radii.size() / 2];
    if (radii.back() - radii.front() > std::max(4.0, 0.6 * median)) {
        return std::nullopt;
    }
    const double radius = median / pixelsPerPoint;
    if (!(radius >= 2 && radius <= std::min(size.width, size.height) * 0.5 + 2)) {
        return std::nullopt;
    }
    return static_cast<int>(std::lround(radius));
}

} // namespace

SurfaceInfo analyzeSurface(ScreenCapture& capture, std::uint32_t windowNumber, const Rect& frame) {
    const double longer = std::max(frame.width, frame.height);
    if (!(frame.width >= smallestSide && frame.height >= smallestSide) || !std::isfinite(longer) ||
        !std::isfinite(frame.x) || !std::isfinite(frame.y)) {
        return {};
    }
    const double scale = std::min(longestSide / longer, 1.0);
    const auto pixels = [scale](double points) {
        return static_cast<int>(std::max(smallestSide, std::round(points * scale)));
    };
    const auto picture =
        capture.captureBelow(frame, windowNumber, {pixels(frame.width), pixels(frame.height)},
                             scale < 1 ? Interpolation::low : Interpolation::none);
    return picture ? analyzeSurfaceIn(*picture, frame.size(), scale) : SurfaceInfo();
}

SurfaceInfo analyzeSurfaceIn(const Bitmap& picture, const Size& size, double pixelsPerPoint) {
    constexpr double leastShare = 0.45;
    const auto colors = dominantColors(picture, leastShare);
    if (!colors) {
        return {};
    }
    const Color fill = opaqueColor(colors->fill.color);
    return {fill, colors->ink ? inkOf(*colors->ink, fill, colors->pixels) : std::nullopt,
            radiusOf(picture, colors->fill.color, size, pixelsPerPoint)};
}

} // namespace lumetry
