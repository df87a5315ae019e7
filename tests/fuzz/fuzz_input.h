#pragma once

#include "base/bitmap.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <span>

namespace lumetry {

/// Ends the program, for the fuzzer to report the input, unless the condition holds.
inline void require(bool condition) {
    if (!condition) {
        std::abort();
    }
}

/// What the fuzzer made up, taken byte by byte. Zeros once it is used up.
class FuzzInput {
public:
    FuzzInput(const std::uint8_t* data, std::size_t size) : rest_(data, size) {}

    [[nodiscard]] bool isEmpty() const { return rest_.empty(); }

    std::uint8_t byte() {
        if (rest_.empty()) {
            return 0;
        }
        const std::uint8_t value = rest_.front();
        rest_ = rest_.subspan(1);
        return value;
    }

    /// A picture of rectangles, later ones over earlier ones, so that short inputs make pictures
    /// with borders, specks and areas.
    Bitmap picture() {
        constexpr int longestSide = 128;
        const int width = 1 + byte() % longestSide;
        const int height = 1 + byte() % longestSide;
        Bitmap bitmap(width, height);
        while (!isEmpty()) {
            const int left = byte() % width;
            const int top = byte() % height;
            const int right = std::min(width, left + byte());
            const int bottom = std::min(height, top + byte());
            const auto pixel = static_cast<std::uint32_t>(byte() << 16 | byte() << 8 | byte());
            for (int y = top; y < bottom; ++y) {
                const auto row = bitmap.pixels.begin() + std::ptrdiff_t{y} * width;
                std::fill(row + left, row + right, pixel);
            }
        }
        return bitmap;
    }

private:
    std::span<const std::uint8_t> rest_;
};

} // namespace lumetry
