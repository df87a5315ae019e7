#include "pixels/dominant_colors.h"

#include "platform/screen_capture.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <span>
#include <utility>

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
// user interface mostly consists of blocks of one key, which need only one look.
constexpr std::size_t blockLength = 16;
using Block = std::span<const std::uint32_t, blockLength>;

// Four pixels at once, also seen as their channels. Comparing sets all bits of what it is true for.
constexpr std::size_t lanes = 4;
using Pixels __attribute__((vector_size(16))) = std::uint32_t;
using Channels __attribute__((vector_size(16))) = std::uint8_t;

Pixels pixelsOf(Block block, std::size_t first) {
    Pixels pixels;
    std::memcpy(&pixels, &block[first], sizeof pixels);
    return pixels;
}

/// Calls it with every four pixels of a block, without a loop that would cost more than the calls.
template<typename Function>
void forEachFour(Block block, Function function) {
    [&]<std::size_t... i>(std::index_sequence<i...>) {
        (function(pixelsOf(block, i * lanes)), ...);
    }
    (std::make_index_sequence<blockLength / lanes>());
}

/// The bits in which any pixel differs from the first.
std::uint32_t differencesIn(Block block) {
    Pixels differences{};
    forEachFour(block, [&](Pixels pixels) { differences |= pixels ^ block[0]; });
    return differences[0] | differences[1] | differences[2] | differences[3];
}

std::size_t missingIn(std::span<const std::uint32_t> rest) {
    std::size_t missing = 0;
    for (; rest.size() >= blockLength; rest = rest.subspan(blockLength)) {
        Pixels counts{};
        forEachFour(rest.first<blockLength>(), [&](Pixels pixels) {
            counts -= reinterpret_cast<Pixels>(pixels == missingPixel);
        });
        missing += counts[0] + counts[1] + counts[2] + counts[3];
    }
    return missing + static_cast<std::size_t>(std::ranges::count(rest, missingPixel));
}

/// Goes through all pixels of a row, in no particular order.
/// @param onRun called with a pixel and how many there are of it
/// @param onBlock called with a block of differing pixels, and whether they have one key
template<typename OnRun, typename OnBlock>
void forEachBlock(std::span<const std::uint32_t> rest, OnRun onRun, OnBlock onBlock) {
    std::uint32_t runPixel = 0;
    std::uint32_t runLength = 0;
    for (; rest.size() >= blockLength; rest = rest.subspan(blockLength)) {
        const Block block = rest.first<blockLength>();
        if (const std::uint32_t differences = differencesIn(block)) {
            onBlock(block, keyOf(differences) == 0);
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
        onRun(pixel, 1U);
    }
}

using Histogram = std::array<std::uint32_t, colorKeys>;

Histogram histogramOf(const Bitmap& picture) {
    // Neighbours are counted apart: they are often alike, and adding to a count waits for the
    // addition just before it.
    std::array<Histogram, 4> parts{};
    forEachBlock(
        picture.pixels,
        [&](std::uint32_t pixel, std::uint32_t times) { parts[0][keyOf(pixel)] += times; },
        [&](Block block, bool oneKey) {
            if (oneKey) {
                parts[0][keyOf(block[0])] += blockLength;
                return;
            }
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
        if (!key) {
            return;
        }
        empty_ = false;
        const std::uint32_t levels = pixelOf(*key) >> 4U;
        std::uint32_t lowest = 0;
        std::uint32_t highest = 0xFF000000U; // whatever alpha is
        for (unsigned shift = 0; shift < 24; shift += 8) {
            const std::uint32_t level = (levels >> shift) % channelLevels;
            lowest |= (level > 0 ? level - 1 : 0) * channelLevels << shift;
            highest |= (std::min(level + 2, channelLevels) * channelLevels - 1) << shift;
        }
        lowest_ = reinterpret_cast<Channels>(Pixels{} + lowest);
        highest_ = reinterpret_cast<Channels>(Pixels{} + highest);
    }

    [[nodiscard]] bool empty() const { return empty_; }
    /// All bits set for each pixel that is one of the shades, else none.
    [[nodiscard]] Pixels mask(Pixels pixels) const {
        const auto channels = reinterpret_cast<Channels>(pixels);
        const auto within = (channels >= lowest_) & (channels <= highest_);
        return reinterpret_cast<Pixels>(reinterpret_cast<Pixels>(within) == ~0U);
    }
    [[nodiscard]] bool contain(std::uint32_t pixel) const { return mask(Pixels{} + pixel)[0] != 0; }

private:
    bool empty_ = true;
    Channels lowest_ = Channels{} + std::uint8_t{1}; ///< of each channel; above the highest
    Channels highest_{};
};

std::size_t countOf(const Shades& shades, const Histogram& histogram) {
    std::size_t count = 0;
    for (std::uint32_t key = 0; key < colorKeys; ++key) {
        if (histogram[key] > 0 && shades.contain(pixelOf(key))) {
            count += histogram[key];
        }
    }
    return count;
}

/// Sums of the channels of many pixels.
class ColorSum {
public:
    /// Of every fourth pixel each, of so few that half a word holds the sum of a channel.
    struct Lanes {
        Pixels count{};
        Pixels redAndBlue{};
        Pixels green{};

        /// @param mask all bits set for each pixel to be added, else none
        void add(Pixels pixels, Pixels mask) {
            pixels &= mask;
            count -= mask;
            redAndBlue += pixels & 0xFF00FFU;
            green += (pixels >> 8U) & 0xFFU;
        }
    };
    static constexpr std::size_t mostInLanes = lanes * 256;

    /// Adds a pixel a number of times.
    void add(std::uint32_t pixel, std::uint64_t times) {
        const PixelColor color = pixelColor(pixel);
        count_ += times;
        red_ += static_cast<std::uint64_t>(color.red) * times;
        green_ += static_cast<std::uint64_t>(color.green) * times;
        blue_ += static_cast<std::uint64_t>(color.blue) * times;
    }
    void add(const Lanes& sums) {
        for (std::size_t lane = 0; lane < lanes; ++lane) {
            count_ += sums.count[lane];
            red_ += sums.redAndBlue[lane] >> 16U;
            green_ += sums.green[lane];
            blue_ += sums.redAndBlue[lane] & 0xFFFFU;
        }
    }

    /// Takes black pixels out again.
    void leaveOutBlack(std::size_t pixels) { count_ -= pixels; }

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

void addTo(ColorSum::Lanes& sums, Block block, const Shades& shades) {
    forEachFour(block, [&](Pixels pixels) { sums.add(pixels, shades.mask(pixels)); });
}

/// Sums of the pixels of two groups of shades, of which no pixel belongs to both.
/// @param missing how many pixels are missing ones, which are summed up as black
ColorSums sumsOf(const Bitmap& picture, const Shades& fill, const Shades& ink,
                 std::size_t missing) {
    ColorSums sums;
    std::span<const std::uint32_t> rest = picture.pixels;
    while (!rest.empty()) {
        const auto strip = rest.first(std::min(rest.size(), ColorSum::mostInLanes));
        rest = rest.subspan(strip.size());
        ColorSum::Lanes fillLanes;
        ColorSum::Lanes inkLanes;
        forEachBlock(
            strip,
            [&](std::uint32_t pixel, std::uint32_t times) {
                if (fill.contain(pixel)) {
                    sums.fill.add(pixel, times);
                } else if (ink.contain(pixel)) {
                    sums.ink.add(pixel, times);
                }
            },
            [&](Block block, bool oneKey) {
                if (!oneKey || fill.contain(block[0])) {
                    addTo(fillLanes, block, fill);
                }
                if (!ink.empty() && (!oneKey || ink.contain(block[0]))) {
                    addTo(inkLanes, block, ink);
                }
            });
        sums.fill.add(fillLanes);
        sums.ink.add(inkLanes);
    }
    if (fill.contain(missingPixel)) {
        sums.fill.leaveOutBlack(missing);
    } else if (ink.contain(missingPixel)) {
        sums.ink.leaveOutBlack(missing);
    }
    return sums;
}

} // namespace

std::optional<DominantColors> dominantColors(const Bitmap& picture, double leastFillShare) {
    Histogram histogram = histogramOf(picture);
    std::uint32_t& blacks = histogram[keyOf(missingPixel)];
    const std::size_t missing = blacks > 0 ? missingIn(picture.pixels) : 0;
    blacks -= static_cast<std::uint32_t>(missing);
    const auto mode = mostFrequent(histogram, [](std::uint32_t) { return true; });
    if (!mode) {
        return std::nullopt;
    }
    const Shades fill(mode);
    const std::size_t total = picture.pixels.size() - missing;
    if (static_cast<double>(countOf(fill, histogram)) / static_cast<double>(total) <
        leastFillShare) {
        return std::nullopt;
    }
    const Shades ink(mostFrequent(histogram, [&](std::uint32_t key) {
        constexpr int nearest = 3; // from here on no shade belongs to both
        return keyDistance(key, *mode) >= nearest;
    }));
    const ColorSums sums = sumsOf(picture, fill, ink, missing);
    const auto fillAverage = sums.fill.average();
    return fillAverage ? std::optional(DominantColors{*fillAverage, sums.ink.average(), total})
                       : std::nullopt;
}

} // namespace lumetry
