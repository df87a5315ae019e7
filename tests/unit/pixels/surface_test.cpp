#include "pixels/surface.h"

#include "base/color_metrics.h"
#include "pixels/color_sample.h"
#include "random_pictures.h"
#include "support/fake_platform/fake_screen_capture.h"
#include "support/printing/printing.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <map>
#include <vector>

namespace lumetry {
namespace {

/// The largest difference of two colours in any channel.
int distanceBetween(const PixelColor& a, const PixelColor& b) {
    return std::max(
        {std::abs(a.red - b.red), std::abs(a.green - b.green), std::abs(a.blue - b.blue)});
}

/// The upper four bits of each channel.
PixelColor coarse(const PixelColor& color) {
    return {color.red / 16, color.green / 16, color.blue / 16};
}

struct ColorCount {
    std::array<int, 3> sums{};
    int pixels = 0;

    void add(const PixelColor& color) {
        sums = {sums[0] + color.red, sums[1] + color.green, sums[2] + color.blue};
        ++pixels;
    }
    [[nodiscard]] PixelColor average() const {
        return {sums[0] / pixels, sums[1] / pixels, sums[2] / pixels};
    }
};

/// The radius by the depths at which the fill begins on each diagonal.
std::optional<int> plainRadius(const Bitmap& picture, const PixelColor& fill, const Size& size,
                               double pixelsPerPoint) {
    std::vector<double> depths;
    for (int corner = 0; corner < 4; ++corner) {
        for (int i = 0; i < std::min(picture.width, picture.height) / 2; ++i) {
            const auto pixel = picture.at(corner % 2 == 0 ? i : picture.width - 1 - i,
                                          corner < 2 ? i : picture.height - 1 - i);
            const bool met = distanceBetween(pixelColor(pixel), fill) <= 22;
            if (pixel != missingPixel && met) {
                depths.push_back(i * 3.414);
            }
            if (pixel == missingPixel || met) {
                break;
            }
        }
    }
    if (depths.size() < 3) {
        return std::nullopt;
    }
    std::ranges::sort(depths);
    const double median = depths[depths.size() / 2];
    const double radius = median / pixelsPerPoint;
    const bool agree = depths.back() - depths.front() <= std::max(4.0, 0.6 * median);
    return agree && radius >= 2 && radius <= std::min(size.width, size.height) / 2 + 2
               ? std::optional(static_cast<int>(std::lround(radius)))
               : std::nullopt;
}

/// The same as analyzeSurfaceIn, pixel by pixel.
SurfaceInfo plainSurface(const Bitmap& picture, const Size& size, double pixelsPerPoint) {
    std::map<std::uint32_t, int> counts;
    std::vector<PixelColor> colors;
    for (const std::uint32_t pixel : picture.pixels) {
        if (pixel != missingPixel) {
            colors.push_back(pixelColor(pixel));
            ++counts[pixel & 0xF0F0F0U];
        }
    }
    const auto mostFrequent = [&](auto isEligible) {
        std::pair<PixelColor, int> best;
        for (const auto& [key, count] : counts) {
            if (count > best.second && isEligible(coarse(pixelColor(key)))) {
                best = {coarse(pixelColor(key)), count};
            }
        }
        return best;
    };
    const auto mode = mostFrequent([](const PixelColor&) { return true; }).first;
    const auto [second, seconds] =
        mostFrequent([&](const PixelColor& color) { return distanceBetween(color, mode) > 2; });
    ColorCount fill;
    ColorCount ink;
    for (const PixelColor& color : colors) {
        if (distanceBetween(coarse(color), mode) <= 1) {
            fill.add(color);
        } else if (seconds > 0 && distanceBetween(coarse(color), second) <= 1) {
            ink.add(color);
        }
    }
    const auto total = static_cast<int>(colors.size());
    if (total == 0 || fill.pixels < 0.45 * total) {
        return {};
    }
    SurfaceInfo surface = {opaqueColor(fill.average()), std::nullopt,
                           plainRadius(picture, fill.average(), size, pixelsPerPoint)};
    if (ink.pixels > 0 && ink.pixels >= (total < 600 ? 12 : total / 50) &&
        wcagContrast(opaqueColor(ink.average()), *surface.fill) >= 1.6) {
        surface.ink = opaqueColor(ink.average());
    }
    return surface;
}

TEST(Surface, IsWhatCountingPixelByPixelFinds) {
    RandomPictures pictures;
    std::array<int, 3> found{};
    for (int round = 0; round < 1000; ++round) {
        SCOPED_TRACE(round);
        const int longest = pictures.oneIn(3) ? 120 : 40;
        const IntSize pixels = {8 + pictures.below(longest), 8 + pictures.below(longest)};
        const double scale = pictures.oneIn(2) ? 1 : 0.02 + pictures.below(98) / 100.0;
        const Size size = {pixels.width / scale, pixels.height / scale};
        const Bitmap picture = pictures.next(pixels, pictures.oneIn(2) ? 0 : 20);
        const SurfaceInfo surface = analyzeSurfaceIn(picture, size, scale);
        const SurfaceInfo expected = plainSurface(picture, size, scale);
        ASSERT_EQ(surface.fill, expected.fill);
        ASSERT_EQ(surface.ink, expected.ink);
        ASSERT_EQ(surface.radius, expected.radius);
        found[0] += surface.fill ? 1 : 0;
        found[1] += surface.ink ? 1 : 0;
        found[2] += surface.radius ? 1 : 0;
    }
    EXPECT_GT(*std::ranges::min_element(found), 60);
}

// Sums of very many bright pixels that all differ.
TEST(Surface, IsExactInBrightNoise) {
    Bitmap picture(400, 400);
    std::minstd_rand random(1);
    for (std::uint32_t& pixel : picture.pixels) {
        pixel = 0xFFF8F8F8U | static_cast<std::uint32_t>(random());
    }
    EXPECT_EQ(analyzeSurfaceIn(picture, {400, 400}, 1), plainSurface(picture, {400, 400}, 1));
}

TEST(Surface, CountsAsFillAndInkFromSoManyPixelsOn) {
    struct Case {
        int rows; ///< of 20 pixels
        int fill;
        int ink;
        bool hasFill;
        bool hasInk;
    };
    for (const auto& [rows, fill, ink, hasFill, hasInk] :
         {Case{20, 180, 120, true, true}, Case{20, 179, 120, false, false},
          Case{20, 388, 12, true, true}, Case{20, 389, 11, true, false},
          Case{100, 1960, 40, true, true}, Case{100, 1961, 39, true, false}}) {
        Bitmap picture = evenBitmap(20, rows, 0x808080);
        std::fill_n(picture.pixels.begin(), fill + ink, opaque(0xFFFFFF));
        std::fill_n(picture.pixels.begin(), fill, opaque(0x336699));
        const SurfaceInfo surface = analyzeSurfaceIn(picture, {20, 20}, 1);
        EXPECT_EQ(surface.fill.has_value(), hasFill) << fill;
        EXPECT_EQ(surface.ink.has_value(), hasInk) << ink;
    }
}

TEST(Surface, CapturesTheFrameAtMost400PixelsLong) {
    struct Case {
        Rect frame;
        IntSize size;
        Interpolation interpolation;
    };
    using enum Interpolation;
    for (const auto& [frame, size, interpolation] : {
             Case{{5, 6, 8, 400}, {8, 400}, none},
             Case{{5, 6, 100.5, 20.4}, {101, 20}, none},
             Case{{5, 6, 800, 200}, {400, 100}, low},
             Case{{5, 6, 2000, 9}, {400, 8}, low},
             Case{{-1e9, 1e9, 1e12, 1e12}, {400, 400}, low},
         }) {
        FakeScreenCapture screen;
        EXPECT_EQ(analyzeSurface(screen, 7, frame), SurfaceInfo());
        EXPECT_EQ(screen.captures, 1);
        EXPECT_EQ(screen.lastArea, frame);
        EXPECT_EQ(screen.lastSize, size) << size.width << " x " << size.height;
        EXPECT_EQ(screen.lastInterpolation, interpolation);
        EXPECT_EQ(screen.lastWindowNumber, 7U);
    }
    constexpr double infinity = std::numeric_limits<double>::infinity();
    const double nan = std::nan("");
    for (const Rect& frame :
         {Rect{0, 0, 7.9, 100}, Rect{0, 0, 100, 7.9}, Rect{0, 0, -50, 50}, Rect{0, 0, nan, 50},
          Rect{nan, 0, 50, 50}, Rect{0, -infinity, 50, 50}, Rect{0, 0, infinity, 50}}) {
        FakeScreenCapture screen;
        EXPECT_EQ(analyzeSurface(screen, 7, frame), SurfaceInfo());
        EXPECT_EQ(screen.captures, 0) << frame;
    }
}

TEST(Surface, HasTheSizeOfItsFrame) {
    Bitmap picture = evenBitmap(800, 200, 0);
    fillRoundedRect(picture, {0, 0, 800, 200}, 60, 0xFFFFFF);
    FakeScreenCapture screen;
    screen.paint(picture);
    // Of the picture at half the size 9 pixels of each diagonal are corner, each 2 points wide.
    EXPECT_EQ(analyzeSurface(screen, 7, {0, 0, 800, 200}).radius, std::lround(9 * 3.414 * 2));
    Bitmap small = evenBitmap(400, 100, 0);
    fillRoundedRect(small, {0, 0, 400, 100}, 30, 0xFFFFFF);
    EXPECT_EQ(analyzeSurfaceIn(small, {20000, 5000}, 0.02).radius, std::lround(9 * 3.414 * 50));
}

TEST(ColorSample, IsThePixelAtThePoint) {
    Bitmap picture = evenBitmap(20, 20, 0xFFFFFF);
    fillRect(picture, {12, 7, 1, 1}, 0x1E90FF);
    FakeScreenCapture screen;
    screen.paint(std::move(picture));
    EXPECT_EQ(sampleColor(screen, 7, {12, 7}), (Color{0x1E / 255.0, 0x90 / 255.0, 1, 1}));
    EXPECT_EQ(screen.lastArea, (Rect{10, 5, 5, 5}));
    EXPECT_EQ(screen.lastWindowNumber, 7U);
    EXPECT_EQ(sampleColor(screen, 7, {13, 7}), white);
    EXPECT_EQ(sampleColor(screen, 7, {25, 7}), std::nullopt) << "on no screen";
    screen.refused = true;
    EXPECT_EQ(sampleColor(screen, 7, {12, 7}), std::nullopt);
}

} // namespace
} // namespace lumetry
