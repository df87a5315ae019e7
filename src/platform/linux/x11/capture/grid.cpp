#include "platform/linux/x11/capture/grid.h"

#include "platform/picture_capture.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace lumetry::x11 {
namespace {

constexpr int longestSide = 16384;
constexpr std::int64_t mostPixels = std::int64_t{64} * 1024 * 1024;
/// The server counts in 1/65536 of a pixel and up to 32767.
constexpr double largestStep = 16384;
/// Beyond that a double does not tell one pixel from the next as finely as the server does.
constexpr double farthestPlace = 1e9;

/// The first of that many steps whose middle is not below the limit.
int firstFrom(double limit, double start, double step, int count) {
    return static_cast<int>(
        std::clamp(std::ceil((limit - start) / step - 0.5), 0.0, static_cast<double>(count)));
}

} // namespace

std::optional<CaptureGrid> CaptureGrid::of(const Rect& area) {
    const auto size = pixelSizeOf(area);
    if (!size) {
        return std::nullopt;
    }
    const Rect whole = {std::floor(area.x), std::floor(area.y), static_cast<double>(size->width),
                        static_cast<double>(size->height)};
    return of(whole, *size, Interpolation::none);
}

std::optional<CaptureGrid> CaptureGrid::of(const Rect& area, IntSize size,
                                           Interpolation interpolation) {
    const auto fits = [](double start, double length, int count) {
        return std::abs(start) <= farthestPlace && length > 0 && count >= 1 &&
               count <= longestSide && length / count <= largestStep;
    };
    const bool fitting = fits(area.x, area.width, size.width) &&
                         fits(area.y, area.height, size.height) &&
                         std::int64_t{size.width} * size.height <= mostPixels;
    return fitting ? std::optional(CaptureGrid(area, size, interpolation)) : std::nullopt;
}

Size CaptureGrid::step() const {
    return {area_.width / size_.width, area_.height / size_.height};
}

bool CaptureGrid::isPlain() const {
    const bool isAligned = std::floor(area_.x) == area_.x && std::floor(area_.y) == area_.y;
    return step() == Size{1, 1} && (interpolation_ == Interpolation::none || isAligned);
}

Point CaptureGrid::placeOf(int column, int row) const {
    const auto [width, height] = step();
    const Point place = {area_.x + column * width, area_.y + row * height};
    return isPlain() ? Point{std::floor(place.x + 0.5), std::floor(place.y + 0.5)} : place;
}

IntRect CaptureGrid::pixelsIn(const Rect& onRoot) const {
    const auto [width, height] = step();
    const int left = firstFrom(onRoot.minX(), area_.x, width, size_.width);
    const int top = firstFrom(onRoot.minY(), area_.y, height, size_.height);
    return {left, top, firstFrom(onRoot.maxX(), area_.x, width, size_.width) - left,
            firstFrom(onRoot.maxY(), area_.y, height, size_.height) - top};
}

} // namespace lumetry::x11
