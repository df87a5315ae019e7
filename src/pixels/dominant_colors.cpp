#include "pixels/dominant_colors.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <span>

namespace lumetry {
namespace {

// Colours are told apart by the upper four bits of each channel; a key is the three of them.
constexpr std::uint32_t channelLevels = 16;
constexpr std::uint32_t colorKeys = 4096;

constexpr std::uint32_t keyOf(std::uint32_t pixel) {
    return ((pixel >> 12U) & 0xF00U) | ((pixel >> 8U) & 0xF0U) | ((pixel >> 4U) & 0xFU);
}

constexpr std::uint32_t pixelOf(std::uint32_t key) {
    return ((key & 0xF00U) << 12U) | ((key & 0xF0U) << 8U) | ((key & 0xFU) << 4U);
}

/// The largest difference of two keys in any channel.
int keyDistance(std::uint32_t a, std::uint32_t b) {
    int most = 0;
    for (int channel = 0; channel < 3; ++channel) {
        most = std::max(most, std::abs(static_cast<int>(a % channelLevels) -
                                       static_cast<int>(b % channelLevels)));
        a /= channelLevels;
        b /= channelLevels;
    }
    return most;
}

// Pixels are read in blocks of a fixed length, which compilers turn into vector instructions. A
// user interface mostly consists of blocks of a single colour, which need only one look.
constexpr std::size_t blockLength = 16;
using Block = std::span<const std::uint32_t, blockLength>;
using BlockMasks = std::array<std::uint32_t, blockLength>;

bool isEven(Block block) {
    const std::uint32_t first = block[0];
    std::uint32_t differences = 0;
    for (std::size_t i = 0; i < blockLength; ++i) {
        differences |= block[i] ^ first;
    }
    return differences == 0;
}

/// Goes through all pixels, in no particular order.
/// @param onRun called with a pixel and how many there are of it
/// @param onBlock called with a block of differing pixels
template<typename OnRun, typename OnBlock>
void forEachBlock(const Bitmap& picture, OnRun onRun, OnBlock onBlock) {
    std::span<const std::uint32_t> rest = picture.pixels;
    std::uint32_t runPixel = 0;
    std::uint32_t runLength = 0;
    for (; rest.size() >= blockLength; rest = rest.subspan(blockLength)) {
        const Block block = rest.first<blockLength>();
        if (!isEven(block)) {
            onBlock(block);
            continue;
        }
        if (block[0] != runPixel) {
            onRun(runPixel, runLength);
            runPixel = block[0];
            runLength = 0;
        }
        runLength += blockLength;
    }
    onRun(runPixel, runLength);
    for (const std::uint32_t pixel : rest) {
        onRun(pixel, 1);
    }
}

using Histogram = std::array<std::uint32_t, colorKeys>;

Histogram histogramOf(const Bitmap& picture) {
    // Neighbours are counted apart: they are often alike, and adding to a count waits for the
    // addition just before it.
    std::array<Histogram, 4> parts{};
    forEachBlock(
        picture, [&](std::uint32_t pixel, std::uint32_t times) { parts[0][keyOf(pixel)] += times; },
        [&](Block block) {
            std::array<std::uint32_t, blockLength> keys{};
            for (std::size_t i = 0; i < blockLength; ++i) {
                keys[i] = keyOf(block[i]);
            }
            for (std::size_t i = 0; i < blockLength; i += 4) {
                ++parts[0][keys[i]];
                ++parts[1][keys[i + 1]];
                ++parts[2][keys[i + 2]];
                ++parts[3][keys[i + 3]];
            }
        });
    for (std::size_t key = 0; key < colorKeys; ++key) {
        parts[0][key] += parts[1][key] + parts[2][key] + parts[3][key];
    }
    return parts[0];
}

/// The most frequent key among those that the predicate lets through; absent when none occurs.
template<typename Predicate>
std::optional<std::uint32_t> mostFrequent(const Histogram& histogram, Predicate isEligible) {
    std::optional<std::uint32_t> best;
    std::uint32_t most = 0;
    for (std::uint32_t key = 0; key < colorKeys; ++key) {
        if (histogram[key] > most && isEligible(key)) {
            best = key;
            most = histogram[key];
        }
    }
    return best;
}

/// The colours at most one step from a key in each channel; none without a key.
class Shades {
public:
    explicit Shades(std::optional<std::uint32_t> key) {
        if (key) {
            const std::uint32_t levels = pixelOf(*key) >> 4U;
            lowest_ = highest_ = 0;
            for (unsigned shift = 0; shift < 24; shift += 8) {
                const std::uint32_t level = (levels >> shift) % channelLevels;
                lowest_ |= (level > 0 ? level - 1 : 0) << shift;
                highest_ |= (level + 1) << shift;
            }
        }
    }

    /// All bits set for a pixel that is one of the shades, else none. The channels are compared at
    /// once: a difference takes the guard bit above its channel away when it is negative.
    [[nodiscard]] std::uint32_t mask(std::uint32_t pixel) const {
        constexpr std::uint32_t guards = 0x808080U;
        const std::uint32_t levels = (pixel >> 4U) & 0x0F0F0FU;
        const std::uint32_t within =
            ((levels | guards) - lowest_) & ((highest_ | guards) - levels) & guards;
        return within == guards ? ~0U : 0U;
    }

private:
    std::uint32_t lowest_ = 0x0F0F0FU; ///< of each channel; above the highest
    std::uint32_t highest_ = 0;
};

std::size_t countOf(const Shades& shades, const Histogram& histogram) {
    std::size_t count = 0;
    for (std::uint32_t key = 0; key < colorKeys; ++key) {
        count += histogram[key] & shades.mask(pixelOf(key));
    }
    return count;
}

/// Sums of the channels of many pixels.
class ColorSum {
public:
    /// Adds a pixel a number of times.
    /// @param mask all bits set; none to leave the pixel out
    void add(std::uint32_t pixel, std::uint32_t mask, std::uint64_t times) {
        const PixelColor color = pixelColor(pixel & mask);
        count_ += (mask & 1U) * times;
        red_ += static_cast<std::uint64_t>(color.red) * times;
        green_ += static_cast<std::uint64_t>(color.green) * times;
        blue_ += static_cast<std::uint64_t>(color.blue) * times;
    }

    /// Adds each pixel of a block once.
    void add(Block block, const BlockMasks& masks) {
        std::uint32_t count = 0;
        std::uint32_t redAndBlue = 0; // in one word: 16 pixels do not fill half of it
        std::uint32_t green = 0;
        for (std::size_t i = 0; i < blockLength; ++i) {
            const std::uint32_t pixel = block[i] & masks[i];
            count += masks[i] & 1U;
            redAndBlue += pixel & 0xFF00FFU;
            green += (pixel >> 8U) & 0xFFU;
        }
        count_ += count;
        red_ += redAndBlue >> 16U;
        green_ += green;
        blue_ += redAndBlue & 0xFFFFU;
    }

    [[nodiscard]] std::optional<AverageColor> average() const {
        if (count_ == 0) {
            return std::nullopt;
        }
        return AverageColor{{static_cast<int>(red_ / count_), static_cast<int>(green_ / count_),
                             static_cast<int>(blue_ / count_)},
                            count_};
    }

private:
    std::uint64_t count_ = 0;
    std::uint64_t red_ = 0;
    std::uint64_t green_ = 0;
    std::uint64_t blue_ = 0;
};

struct ColorSums {
    ColorSum fill;
    ColorSum ink;
};

/// Sums of the pixels of two groups of shades.
ColorSums sumsOf(const Bitmap& picture, const Shades& fill, const Shades& ink) {
    ColorSums sums;
    forEachBlock(
        picture,
        [&](std::uint32_t pixel, std::uint32_t times) {
            sums.fill.add(pixel, fill.mask(pixel), times);
            sums.ink.add(pixel, ink.mask(pixel), times);
        },
        [&](Block block) {
            BlockMasks fillMasks{};
            BlockMasks inkMasks{};
            for (std::size_t i = 0; i < blockLength; ++i) {
                fillMasks[i] = fill.mask(block[i]);
                inkMasks[i] = ink.mask(block[i]);
            }
            sums.fill.add(block, fillMasks);
            sums.ink.add(block, inkMasks);
        });
    return sums;
}

} // namespace

std::optional<DominantColors> dominantColors(const Bitmap& picture, double leastFillShare) {
    const Histogram histogram = histogramOf(picture);
    const auto mode = mostFrequent(histogram, [](std::uint32_t) { return true; });
    if (!mode) {
        return std::nullopt;
    }
    const Shades fill(mode);
    const auto total = static_cast<double>(picture.pixels.size());
    if (static_cast<double>(countOf(fill, histogram)) / total < leastFillShare) {
        return std::nullopt;
    }
    const Shades ink(mostFrequent(histogram, [&](std::uint32_t key) {
        constexpr int nearest = 3; // from here on no shade belongs to both
        return keyDistance(key, *mode) >= nearest;
    }));
    const ColorSums sums = sumsOf(picture, fill, ink);
    const auto fillAverage = sums.fill.average();
    return fillAverage ? std::optional(DominantColors{*fillAverage, sums.ink.average()})
                       : std::nullopt;
}

} // namespace lumetry
