#pragma once

#include "platform/screen_capture.h"
#include "support/pictures/pictures.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <random>

namespace lumetry {

/// What a screen may show: a page with an element on it, which may have a border, round corners,
/// marks, a gradient or noise, and may reach beyond the screens.
class RandomPictures {
public:
    /// @param margin most that the page may take on each side, in percent
    Bitmap next(IntSize size, int margin) {
        const auto aside = [&](int length) { return below(1 + length * margin / 100); };
        const PixelRect rect = {aside(size.width), aside(size.height),
                                size.width - 2 * aside(size.width),
                                size.height - 2 * aside(size.height)};
        const std::uint32_t page = color();
        const std::uint32_t element = oneIn(3) ? shade(page, 32) : color();
        const int radius = oneIn(2) ? 0 : below(std::min(rect.width, rect.height) / 2 + 3);
        const int border = oneIn(2) ? 0 : 1 + below(8);
        Bitmap picture = evenBitmap(size.width, size.height, page);
        fillRoundedRect(picture, rect, radius, oneIn(2) ? shade(element, 32) : color());
        fillRoundedRect(
            picture,
            {rect.x + border, rect.y + border, rect.width - 2 * border, rect.height - 2 * border},
            std::max(radius - border, 0), element);
        const std::uint32_t ink = oneIn(3) ? shade(element, 60) : color();
        for (int marks = below(12); marks > 0; --marks) {
            const int across = 1 + below(8);
            const int along = 1 + below(34);
            const PixelRect mark = {below(size.width), below(size.height), across, along};
            fillRect(picture, oneIn(2) ? mark : PixelRect{mark.x, mark.y, along, across},
                     oneIn(4) ? color() : ink);
        }
        disturb(picture);
        return picture;
    }

    [[nodiscard]] int below(int limit) {
        return limit < 1 ? 0 : static_cast<int>(random_() % static_cast<std::uint32_t>(limit));
    }
    [[nodiscard]] bool oneIn(int times) { return below(times) == 0; }

private:
    [[nodiscard]] std::uint32_t color() {
        const auto any = static_cast<std::uint32_t>(below(0x1000000));
        return std::array{0U, 0xFFFFFFU, any, any}.at(static_cast<std::size_t>(below(4)));
    }
    /// Each channel up to so many levels away.
    [[nodiscard]] std::uint32_t shade(std::uint32_t rgb, int levels) {
        std::uint32_t result = 0;
        for (const unsigned shift : {0U, 8U, 16U}) {
            const int level =
                static_cast<int>((rgb >> shift) & 0xFFU) + below(2 * levels + 1) - levels;
            result |= static_cast<std::uint32_t>(std::clamp(level, 0, 255)) << shift;
        }
        return result;
    }
    /// Noise, a gradient, or an end of the screen, maybe with another screen behind it.
    void disturb(Bitmap& picture) {
        const int noise = std::array{0, 0, 3, 40}.at(static_cast<std::size_t>(below(4)));
        const int seldom = 1 + below(40);
        const int gradient = oneIn(4) ? 1 + below(3) : 0;
        const int end = oneIn(3) ? below(picture.width) : picture.width;
        const int next = oneIn(2) ? end + below(9) : picture.width;
        const int top = oneIn(2) ? 0 : below(picture.height);
        for (int i = 0; std::uint32_t & pixel : picture.pixels) {
            const int x = i % picture.width;
            const int y = i++ / picture.width;
            const auto step = static_cast<std::uint32_t>(gradient > 0 ? x / gradient % 64 : 0);
            pixel ^= step << 16U | step << 8U | step;
            if (noise > 0 && oneIn(seldom)) {
                pixel = opaque(shade(pixel & 0xFFFFFFU, noise));
            }
            pixel = x < end || x >= next || y < top ? pixel : missingPixel;
        }
    }

    std::minstd_rand random_{1};
};

} // namespace lumetry
