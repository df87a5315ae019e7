#include "audit/text_pixels.h"

#include "base/color_metrics.h"
#include "base/int_geometry.h"
#include "pixels/color_sample.h"
#include "platform/picture_capture.h"
#include "platform/screen_capture.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <unordered_map>
#include <utility>

namespace lumetry {
namespace {

bool isNear(const PixelColor& a, const PixelColor& b, int difference) {
    return std::abs(a.red - b.red) <= difference && std::abs(a.green - b.green) <= difference &&
           std::abs(a.blue - b.blue) <= difference;
}

PixelColor pixelColorOf(const Color& color) {
    const auto level = [](double value) { return static_cast<int>(std::lround(value * 255)); };
    return {level(color.red), level(color.green), level(color.blue)};
}

} // namespace

AreaColors::AreaColors(const PictureCapture& picture, const Rect& area, int mostPixels) {
    const Bitmap& bitmap = picture.picture();
    const IntRect pixels = picture.pixelsIn(area);
    if (pixels.isEmpty()) {
        return;
    }
    const double all = static_cast<double>(pixels.width) * pixels.height;
    const int step = std::max(1, static_cast<int>(std::ceil(std::sqrt(all / mostPixels))));
    std::unordered_map<std::uint32_t, std::size_t> counts;
    Counted run; // most pixels are like the one before
    for (int y = pixels.y; y < pixels.endY(); y += step) {
        for (int x = pixels.x; x < pixels.endX(); x += step) {
            const std::uint32_t pixel = bitmap.at(x, y);
            if (pixel != run.pixel) {
                counts[run.pixel] += run.count;
                run = {pixel, 0};
            }
            ++run.count;
        }
    }
    counts[run.pixel] += run.count;
    counts.erase(missingPixel);
    colors_.reserve(counts.size());
    for (const auto& [pixel, count] : counts) {
        colors_.push_back({pixel, count});
    }
}

std::optional<Color> AreaColors::evenFill(const Color& estimate) const {
    constexpr int shades = 22; // as an average of a colour with its shades takes them together
    const PixelColor wanted = pixelColorOf(estimate);
    Counted most;
    std::size_t all = 0;
    for (const Counted& one : colors_) {
        if (isNear(pixelColor(one.pixel), wanted, shades)) {
            all += one.count;
            most = one.count > most.count ? one : most;
        }
    }
    return 2 * most.count > all ? std::optional(opaqueColor(pixelColor(most.pixel))) : std::nullopt;
}

std::optional<Color> AreaColors::inkOn(const Color& fill) const {
    constexpr double leastContrast = 1.05;
    constexpr std::size_t fewestPixels = 6;
    constexpr std::size_t share = 50; // one in as many of the pixels that stand out
    struct Standing {
        double contrast;
        Counted counted;
    };
    std::vector<Standing> standing;
    std::size_t all = 0;
    for (const Counted& one : colors_) {
        const double contrast = wcagContrast(opaqueColor(pixelColor(one.pixel)), fill);
        if (contrast >= leastContrast) {
            standing.push_back({contrast, one});
            all += one.count;
        }
    }
    if (all < fewestPixels) {
        return std::nullopt;
    }
    std::ranges::sort(standing, [](const Standing& a, const Standing& b) {
        return std::pair(a.contrast, a.counted.pixel) > std::pair(b.contrast, b.counted.pixel);
    });
    const std::size_t enough = std::max(std::size_t{3}, all / share);
    Counted ink;
    std::size_t passed = 0;
    for (const Standing& one : standing) {
        passed += one.counted.count;
        ink = one.counted.count > ink.count ? one.counted : ink;
        if (passed >= enough) {
            break;
        }
    }
    return opaqueColor(pixelColor(ink.pixel));
}

bool AreaColors::contains(const Color& color) const {
    constexpr int nearly = 8;
    constexpr std::size_t fewest = 3;
    const PixelColor wanted = pixelColorOf(color);
    std::size_t count = 0;
    for (const Counted& one : colors_) {
        count += isNear(pixelColor(one.pixel), wanted, nearly) ? one.count : 0;
    }
    return count >= fewest;
}

} // namespace lumetry
