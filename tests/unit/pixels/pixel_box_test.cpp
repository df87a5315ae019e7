#include "pixels/pixel_box.h"

#include "pixels/color_sample.h"
#include "random_pictures.h"
#include "support/fake_platform/fake_screen_capture.h"
#include "support/printing/printing.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstdlib>
#include <optional>
#include <vector>

namespace lumetry {
namespace {

constexpr Point at = {1000, 500};

/// The same as pixelBoxIn, pixel by pixel.
class PlainBox {
public:
    explicit PlainBox(const Bitmap& square)
        : square_(square), centre_(pixelColor(square.at(square.width / 2, square.height / 2))) {}

    [[nodiscard]] std::optional<Rect> around(Point point) const {
        std::array<double, 4> reach{};
        for (std::size_t side = 0; side < 4; ++side) {
            const int dx = std::array{-1, 1, 0, 0}.at(side);
            const int dy = std::array{0, 0, -1, 1}.at(side);
            std::vector<int> found;
            for (const int track : {-5, 0, 5}) {
                const int x = square_.width / 2 + track * std::abs(dy);
                const int y = square_.height / 2 + track * std::abs(dx);
                const auto distance = inside(x, y) ? walk(x, y, dx, dy) : std::nullopt;
                if (distance) {
                    found.push_back(*distance);
                }
            }
            if (found.size() < 2) {
                return std::nullopt;
            }
            reach.at(side) = *std::ranges::min_element(found) / (square_.width / 300.0);
        }
        const auto [left, right, top, bottom] = reach;
        return left + right < 8 || top + bottom < 8
                   ? std::nullopt
                   : std::optional(Rect{point.x - left, point.y - top, left + right, top + bottom});
    }

private:
    [[nodiscard]] bool inside(int x, int y) const {
        return x >= 1 && x <= square_.width - 2 && y >= 1 && y <= square_.height - 2;
    }
    [[nodiscard]] bool exists(int x, int y) const { return square_.at(x, y) != missingPixel; }
    [[nodiscard]] bool matches(int x, int y) const {
        const PixelColor color = pixelColor(square_.at(x, y));
        return exists(x, y) && std::abs(color.red - centre_.red) +
                                       std::abs(color.green - centre_.green) +
                                       std::abs(color.blue - centre_.blue) <=
                                   56;
    }
    /// How many pixels that differ follow one another from the next one on.
    [[nodiscard]] int run(int x, int y, int dx, int dy) const {
        int length = 0;
        while (inside(x += dx, y += dy) && !matches(x, y)) {
            ++length;
        }
        return length;
    }
    /// How far it is to the last pixel before an edge; absent when the square ends first.
    [[nodiscard]] std::optional<int> walk(int x, int y, int dx, int dy) const {
        for (int distance = 0; inside(x + dx, y + dy);) {
            int step = 1;
            for (; step <= 7; ++step) {
                const int nextX = x + step * dx;
                const int nextY = y + step * dy;
                if (!inside(nextX, nextY) || !exists(nextX, nextY)) {
                    return distance;
                }
                if (matches(nextX, nextY)) {
                    break;
                }
            }
            const bool line =
                step > 1 && 1 + run(x + dx, y + dy, dy, dx) + run(x + dx, y + dy, -dy, -dx) >= 28;
            if (step > 7 || line) {
                return distance;
            }
            distance += step;
            x += step * dx;
            y += step * dy;
        }
        return std::nullopt;
    }

    const Bitmap& square_;
    PixelColor centre_;
};

TEST(PixelBox, IsWhatWalkingPixelByPixelFinds) {
    RandomPictures pictures;
    int boxes = 0;
    for (int round = 0; round < 1200; ++round) {
        SCOPED_TRACE(round);
        const int side = pictures.oneIn(8) ? 12 + pictures.below(5) : 30 + pictures.below(90);
        const Bitmap square = pictures.next({side, side + pictures.below(4)}, 45);
        const auto box = pixelBoxIn(square, at);
        const auto expected = PlainBox(square).around(at);
        ASSERT_EQ(box.has_value(), expected.has_value());
        if (box) {
            ++boxes;
            ASSERT_NEAR(box->minX(), expected->minX(), 1e-9);
            ASSERT_NEAR(box->minY(), expected->minY(), 1e-9);
            ASSERT_NEAR(box->width, expected->width, 1e-9);
            ASSERT_NEAR(box->height, expected->height, 1e-9);
        }
    }
    EXPECT_GT(boxes, 120);
}

TEST(PixelBox, OfAButtonGoesFromEdgeToEdgeAcrossItsText) {
    Bitmap picture = evenBitmap(1400, 900, 0xFFFFFF);
    fillRect(picture, {980, 490, 50, 30}, 0x808080);
    drawStrokes(picture, {985, 497, 40, 9}, 0);
    FakeScreenCapture screen;
    screen.paint(picture);
    EXPECT_EQ(pixelBox(screen, 7, at), (Rect{980, 490, 49, 29}));
    EXPECT_EQ(screen.lastArea, (Rect{850, 350, 300, 300}));
    EXPECT_EQ(screen.lastWindowNumber, 7U);
    EXPECT_EQ(pixelBox(screen, 7, {std::nan(""), 500}), std::nullopt);
    screen.refused = true;
    EXPECT_EQ(pixelBox(screen, 7, at), std::nullopt);
}

// At two pixels a point: eight points are as small as a box may be.
TEST(PixelBox, HasEightPointsAtLeast) {
    for (const auto& [region, size] : {
             std::pair(PixelRect{292, 280, 17, 40}, std::optional(Size{8, 19.5})),
             {{292, 280, 16, 40}, std::nullopt},
             {{280, 292, 40, 17}, Size{19.5, 8}},
             {{280, 292, 40, 16}, std::nullopt},
         }) {
        Bitmap picture = evenBitmap(600, 600, 0xFFFFFF);
        fillRect(picture, region, 0x808080);
        const auto box = pixelBoxIn(picture, at);
        EXPECT_EQ(box ? std::optional(box->size()) : std::nullopt, size) << region.width;
    }
    EXPECT_EQ(pixelBoxIn(Bitmap(), at), std::nullopt);
}

// Of what lies beside the centre only one row and one column are in reach then, and one walk is not
// enough.
TEST(PixelBox, NeedsTwelveRowsAndColumns) {
    struct Case {
        IntSize size;
        int row; ///< from the centre to the other one that has edges
        int column;
        bool found;
    };
    for (const auto& [size, row, column, found] :
         {Case{{1, 1}, -5, -5, false}, Case{{10, 10}, -5, -5, false}, Case{{11, 11}, -5, -5, false},
          Case{{12, 12}, -5, -5, true}, Case{{14, 12}, 5, -5, false}, Case{{12, 14}, -5, 5, false},
          Case{{13, 13}, 5, 5, true}}) {
        const auto [width, height] = size;
        Bitmap picture = evenBitmap(width, height, 0x808080);
        for (const int x : {1, width - 2}) {
            fillRect(picture, {x, height / 2 + row, 1, 1}, 0);
            fillRect(picture, {x, height / 2, 1, 1}, 0);
        }
        for (const int y : {1, height - 2}) {
            fillRect(picture, {width / 2 + column, y, 1, 1}, 0);
            fillRect(picture, {width / 2, y, 1, 1}, 0);
        }
        EXPECT_EQ(pixelBoxIn(picture, at).has_value(), found) << width << " x " << height;
    }
}

} // namespace
} // namespace lumetry
