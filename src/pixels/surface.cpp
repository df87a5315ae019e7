#include "pixels/surface.h"

#include "base/color_metrics.h"
#include "pixels/color_sample.h"
#include "platform/screen_capture.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdlib>
#include <vector>

namespace lumetry {
namespace {

constexpr double smallestSide = 8;  ///< of an element, in points
constexpr double longestSide = 400; ///< of the picture, in pixels

// Colours are told apart by the upper four bits of each channel.
constexpr unsigned channelLevels = 16;
constexpr std::size_t colorKeys = 4096;

constexpr std::size_t keyOf(std::uint32_t pixel) {
    return ((pixel >> 12U) & 0xF00U) | ((pixel >> 8U) & 0xF0U) | ((pixel >> 4U) & 0xFU);
}

/// The largest difference of two keys in any channel, in quantised steps.
int keyDistance(std::size_t a, std::size_t b) {
    int most = 0;
    for (int channel = 0; channel < 3; ++channel) {
        most = std::max(most, std::abs(static_cast<int>(a % channelLevels) -
                                       static_cast<int>(b % channelLevels)));
        a /= channelLevels;
        b /= channelLevels;
    }
    return most;
}

using Histogram = std::array<std::uint32_t, colorKeys>;

/// The most frequent key among those that the predicate lets through; absent when none occurs.
template<typename Predicate>
std::optional<std::size_t> mostFrequent(const Histogram& histogram, Predicate isEligible) {
    std::optional<std::size_t> best;
    for (std::size_t key = 0; key < colorKeys; ++key) {
        if (histogram[key] > (best ? histogram[*best] : 0) && isEligible(key)) {
            best = key;
        }
    }
    return best;
}

/// Sums of the channels of many pixels.
struct ColorSum {
    std::uint64_t count = 0;
    std::uint64_t red = 0;
    std::uint64_t green = 0;
    std::uint64_t blue = 0;

    void add(std::uint32_t pixel) {
        ++count;
        red += (pixel >> 16U) & 0xFFU;
        green += (pixel >> 8U) & 0xFFU;
        blue += pixel & 0xFFU;
    }

    /// Rounded down. There is at least one pixel.
    [[nodiscard]] PixelColor average() const {
        return {static_cast<int>(red / count), static_cast<int>(green / count),
                static_cast<int>(blue / count)};
    }
};

struct ColorSums {
    ColorSum fill;
    ColorSum ink;
};

ColorSums sumColors(const Bitmap& picture) {
    Histogram histogram{};
    for (const std::uint32_t pixel : picture.pixels) {
        ++histogram[keyOf(pixel)];
    }
    const auto mode = mostFrequent(histogram, [](std::size_t) { return true; });
    const auto second = mostFrequent(histogram, [&](std::size_t key) {
        constexpr int nearFill = 2;
        return keyDistance(key, *mode) > nearFill;
    });
    // One sum for each key's pixels; those near neither are added to the third and dropped.
    std::array<std::uint8_t, colorKeys> sumOfKey{};
    for (std::size_t key = 0; key < colorKeys; ++key) {
        sumOfKey[key] = keyDistance(key, *mode) <= 1               ? 0
                        : second && keyDistance(key, *second) <= 1 ? 1
                                                                   : 2;
    }
    std::array<ColorSum, 3> sums;
    for (const std::uint32_t pixel : picture.pixels) {
        sums[sumOfKey[keyOf(pixel)]].add(pixel);
    }
    return {sums[0], sums[1]};
}

std::optional<Color> inkOf(const ColorSum& ink, const Color& fill, std::size_t total) {
    constexpr std::size_t smallPicture = 600;
    constexpr std::size_t fewestInSmall = 12;
    constexpr double leastContrast = 1.6;
    const std::size_t fewest = total < smallPicture ? fewestInSmall : total / 50;
    if (ink.count < fewest || ink.count == 0) {
        return std::nullopt;
    }
    const Color color = opaqueColor(ink.average());
    return wcagContrast(color, fill) >= leastContrast ? std::optional(color) : std::nullopt;
}

bool isFill(const PixelColor& color, const PixelColor& fill) {
    constexpr int largestDifference = 22;
    return std::abs(color.red - fill.red) <= largestDifference &&
           std::abs(color.green - fill.green) <= largestDifference &&
           std::abs(color.blue - fill.blue) <= largestDifference;
}

/// For each corner whose diagonal meets the fill, the radius in pixels of a corner that lets the
/// diagonal in at that depth; ascending.
std::vector<double> cornerRadii(const Bitmap& picture, const PixelColor& fill) {
    // A rounded corner of radius r begins r × (1 - 1/√2) from the corner along each axis.
    constexpr double radiusPerStep = 3.414;
    std::vector<double> radii;
    for (const bool top : {true, false}) {
        for (const bool left : {true, false}) {
            for (int i = 0; i < std::min(picture.width, picture.height) / 2; ++i) {
                const int x = left ? i : picture.width - 1 - i;
                const int y = top ? i : picture.height - 1 - i;
                if (isFill(pixelColor(picture.at(x, y)), fill)) {
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
    const std::size_t total = picture.pixels.size();
    if (total == 0) {
        return {};
    }
    const ColorSums sums = sumColors(picture);
    if (static_cast<double>(sums.fill.count) / static_cast<double>(total) < leastShare) {
        return {};
    }
    const PixelColor fill = sums.fill.average();
    const Color fillColor = opaqueColor(fill);
    return {fillColor, inkOf(sums.ink, fillColor, total),
            radiusOf(picture, fill, size, pixelsPerPoint)};
}

} // namespace lumetry
