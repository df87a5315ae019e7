#include "pixels/dominant_colors.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <map>
#include <random>
#include <utility>
#include <vector>

namespace lumetry {
namespace {

int distanceBetween(std::uint32_t a, std::uint32_t b) {
    int most = 0;
    for (const unsigned shift : {4U, 12U, 20U}) {
        most = std::max(most, std::abs(static_cast<int>(a >> shift & 0xFU) -
                                       static_cast<int>(b >> shift & 0xFU)));
    }
    return most;
}

template<typename Predicate>
std::optional<AverageColor> averageOf(const Bitmap& picture, Predicate isWanted) {
    PixelColor sum;
    int count = 0;
    for (const std::uint32_t pixel : picture.pixels) {
        if (isWanted(pixel)) {
            const PixelColor color = pixelColor(pixel);
            sum = {sum.red + color.red, sum.green + color.green, sum.blue + color.blue};
            ++count;
        }
    }
    return count == 0
               ? std::nullopt
               : std::optional(AverageColor{{sum.red / count, sum.green / count, sum.blue / count},
                                            static_cast<std::size_t>(count)});
}

/// The colours counted pixel by pixel.
DominantColors slowDominantColors(const Bitmap& picture) {
    std::map<std::uint32_t, int> counts;
    for (const std::uint32_t pixel : picture.pixels) {
        ++counts[pixel & 0xF0F0F0U];
    }
    const auto mostFrequent = [&](auto isEligible) {
        std::pair<std::uint32_t, int> best = {0, 0};
        for (const auto& entry : counts) {
            if (entry.second > best.second && isEligible(entry.first)) {
                best = entry;
            }
        }
        return best;
    };
    const auto mode = mostFrequent([](std::uint32_t) { return true; }).first;
    const auto second =
        mostFrequent([&](std::uint32_t key) { return distanceBetween(key, mode) > 2; });
    const auto isFill = [&](std::uint32_t pixel) { return distanceBetween(pixel, mode) <= 1; };
    return {*averageOf(picture, isFill), averageOf(picture, [&](std::uint32_t pixel) {
                return second.second > 0 && !isFill(pixel) &&
                       distanceBetween(pixel, second.first) <= 1;
            })};
}

bool areEqual(const AverageColor& a, const AverageColor& b) {
    return a.color == b.color && a.pixels == b.pixels;
}

/// Runs of a few colours and their shades, some with noise, of any length.
Bitmap randomPicture(std::minstd_rand& random) {
    const auto below = [&](std::uint32_t limit) {
        return static_cast<std::uint32_t>(random() % limit);
    };
    std::vector<std::uint32_t> colors(1 + below(4));
    for (std::uint32_t& color : colors) {
        color = below(0x1000) << 20U | below(0x1000) << 8U | below(0x100);
    }
    Bitmap picture(static_cast<int>(1 + below(90)), static_cast<int>(1 + below(12)));
    std::uint32_t color = colors.front();
    std::uint32_t noise = 0;
    for (std::uint32_t left = 0; std::uint32_t & pixel : picture.pixels) {
        if (left-- == 0) {
            left = below(70);
            color = colors[std::min<std::size_t>(below(8) / 2, colors.size() - 1)];
            noise = std::array{0U, 0x070707U, 0x1F1F1FU}[below(3)];
        }
        pixel = 0xFF000000U | (color ^ (below(0x1000000) & noise));
    }
    return picture;
}

TEST(DominantColors, AreThoseOfEveryPixelCountedByItself) {
    std::minstd_rand random(1);
    for (int round = 0; round < 2000; ++round) {
        SCOPED_TRACE(round);
        const Bitmap picture = randomPicture(random);
        const auto fast = dominantColors(picture, 0);
        const DominantColors slow = slowDominantColors(picture);
        ASSERT_TRUE(fast);
        ASSERT_TRUE(areEqual(fast->fill, slow.fill));
        ASSERT_EQ(fast->ink.has_value(), slow.ink.has_value());
        ASSERT_TRUE(!fast->ink || areEqual(*fast->ink, *slow.ink));
    }
}

TEST(DominantColors, AreExactInBrightNoise) {
    std::minstd_rand random(1);
    Bitmap picture(64, 64);
    for (std::uint32_t& pixel : picture.pixels) {
        pixel = 0xFFF8F8F8U | static_cast<std::uint32_t>(random());
    }
    EXPECT_TRUE(areEqual(dominantColors(picture, 0)->fill, slowDominantColors(picture).fill));
}

} // namespace
} // namespace lumetry
