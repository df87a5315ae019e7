#include "platform/picture_capture.h"

#include <algorithm>
#include <cmath>

namespace lumetry {
namespace {

constexpr double largestSide = 16384; ///< in pixels

/// Where the samples of one axis lie in the picture: for each the pixel before it and the weight of
/// the next one, from 0 to 256.
struct AxisSample {
    int pixel = 0;
    std::uint32_t weight = 0;
};

std::vector<AxisSample> axisSamples(double start, double length, int count,
                                    Interpolation interpolation) {
    constexpr double limit = 1e9;
    std::vector<AxisSample> samples(static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i) {
        const double centre = std::clamp(start + (i + 0.5) * length / count, -limit, limit);
        AxisSample& sample = samples[static_cast<std::size_t>(i)];
        if (interpolation == Interpolation::none) {
            sample.pixel = static_cast<int>(std::floor(centre));
        } else {
            const double before = std::floor(centre - 0.5);
            sample.pixel = static_cast<int>(before);
            sample.weight = static_cast<std::uint32_t>(std::lround((centre - 0.5 - before) * 256));
        }
    }
    return samples;
}

std::uint32_t pixelAt(const Bitmap& picture, int x, int y) {
    return x >= 0 && y >= 0 && x < picture.width && y < picture.height ? picture.at(x, y) : 0;
}

/// Each channel of two pixels mixed.
/// @param weight of the second one, from 0 to 256
std::uint32_t mixed(std::uint32_t first, std::uint32_t second, std::uint32_t weight) {
    constexpr std::uint32_t evenChannels = 0x00FF00FFU;
    const auto mix = [weight](std::uint32_t a, std::uint32_t b) {
        return ((a * (256 - weight) + b * weight) >> 8U) & evenChannels;
    };
    return mix(first & evenChannels, second & evenChannels) |
           (mix((first >> 8U) & evenChannels, (second >> 8U) & evenChannels) << 8U);
}

} // namespace

std::optional<IntSize> pixelSizeOf(const Rect& area) {
    const double width = std::round(area.width);
    const double height = std::round(area.height);
    if (!std::isfinite(area.x) || !std::isfinite(area.y) ||
        !(width >= 1 && height >= 1 && width <= largestSide && height <= largestSide)) {
        return std::nullopt;
    }
    return IntSize{static_cast<int>(width), static_cast<int>(height)};
}

Rect PictureCapture::pixelsOf(const Rect& area) const {
    return {(area.x - origin_.x) * scale_, (area.y - origin_.y) * scale_, area.width * scale_,
            area.height * scale_};
}

IntRect PictureCapture::pixelsIn(const Rect& area) const {
    const Rect pixels = intersect(pixelsOf(area), {0, 0, static_cast<double>(picture_.width),
                                                   static_cast<double>(picture_.height)});
    if (pixels.isEmpty()) {
        return {};
    }
    const auto left = static_cast<int>(std::floor(pixels.minX()));
    const auto top = static_cast<int>(std::floor(pixels.minY()));
    return {left, top, static_cast<int>(std::floor(pixels.maxX())) - left,
            static_cast<int>(std::floor(pixels.maxY())) - top};
}

std::optional<Bitmap> PictureCapture::captureBelow(const Rect& area,
                                                   std::uint32_t /*windowNumber*/) {
    const Rect pixels = pixelsOf(area);
    const auto size = pixelSizeOf(pixels);
    if (!size) {
        return std::nullopt;
    }
    const Rect whole = {std::floor(pixels.x), std::floor(pixels.y),
                        static_cast<double>(size->width), static_cast<double>(size->height)};
    return drawn(whole, *size, Interpolation::none);
}

std::optional<Bitmap> PictureCapture::captureBelow(const Rect& area, std::uint32_t /*windowNumber*/,
                                                   IntSize size, Interpolation interpolation) {
    return drawn(pixelsOf(area), size, interpolation);
}

/// The part of the picture at that size, what lies outside of it missing.
std::optional<Bitmap> PictureCapture::drawn(const Rect& pixels, IntSize size,
                                            Interpolation interpolation) const {
    const bool isFinite = std::isfinite(pixels.maxX()) && std::isfinite(pixels.maxY());
    if (!isFinite || !(pixels.width > 0 && pixels.height > 0) || size.width < 1 ||
        size.height < 1 || size.width > largestSide || size.height > largestSide) {
        return std::nullopt;
    }
    const auto columns = axisSamples(pixels.x, pixels.width, size.width, interpolation);
    const auto rows = axisSamples(pixels.y, pixels.height, size.height, interpolation);
    Bitmap bitmap(size.width, size.height);
    auto pixel = bitmap.pixels.begin();
    for (const auto& [y, down] : rows) {
        for (const auto& [x, right] : columns) {
            if (interpolation == Interpolation::none) {
                *pixel++ = pixelAt(picture_, x, y);
                continue;
            }
            *pixel++ = mixed(
                mixed(pixelAt(picture_, x, y), pixelAt(picture_, x + 1, y), right),
                mixed(pixelAt(picture_, x, y + 1), pixelAt(picture_, x + 1, y + 1), right), down);
        }
    }
    return bitmap;
}

} // namespace lumetry
