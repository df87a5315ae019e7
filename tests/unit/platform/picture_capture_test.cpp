#include "platform/picture_capture.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

namespace lumetry {
namespace {

/// Each pixel says where it is: its column in the second byte, its row in the first.
Bitmap numberedPicture(int width, int height) {
    Bitmap picture(width, height);
    for (std::size_t i = 0; i < picture.pixels.size(); ++i) {
        const auto columns = static_cast<std::size_t>(width);
        picture.pixels[i] =
            static_cast<std::uint32_t>(0xFF000000U | (i % columns) << 8U | i / columns);
    }
    return picture;
}

TEST(PictureCapture, ReadsWholePixelsWithNothingAround) {
    PictureCapture capture(numberedPicture(4, 3));
    const auto inside = capture.captureBelow({1.7, 1, 2, 2}, 0);
    ASSERT_TRUE(inside);
    EXPECT_EQ(inside->pixels,
              (std::vector<std::uint32_t>{0xFF000101, 0xFF000201, 0xFF000102, 0xFF000202}));
    const auto corner = capture.captureBelow({-1, -1, 2, 2}, 0);
    ASSERT_TRUE(corner);
    EXPECT_EQ(corner->pixels, (std::vector<std::uint32_t>{0, 0, 0, 0xFF000000}));
    const auto away = capture.captureBelow({1e300, -1e300, 1, 1}, 0);
    ASSERT_TRUE(away);
    EXPECT_EQ(away->pixels, std::vector<std::uint32_t>{0});
}

TEST(PictureCapture, DrawsAtAnotherSize) {
    Bitmap stripes(4, 2);
    stripes.pixels = {0xFF000000, 0xFFFFFFFF, 0xFF000000, 0xFF102030,
                      0xFF000000, 0xFFFFFFFF, 0xFF000000, 0xFF102030};
    PictureCapture capture(std::move(stripes));
    const Rect all = {0, 0, 4, 2};
    const auto blended = capture.captureBelow(all, 0, {2, 1}, Interpolation::low);
    ASSERT_TRUE(blended);
    EXPECT_EQ(blended->pixels, (std::vector<std::uint32_t>{0xFF7F7F7F, 0xFF081018}));
    const auto nearest = capture.captureBelow(all, 0, {8, 1}, Interpolation::none);
    ASSERT_TRUE(nearest);
    EXPECT_EQ(nearest->pixels,
              (std::vector<std::uint32_t>{0xFF000000, 0xFF000000, 0xFFFFFFFF, 0xFFFFFFFF,
                                          0xFF000000, 0xFF000000, 0xFF102030, 0xFF102030}));
}

TEST(PictureCapture, RefusesAreasThatAreNone) {
    constexpr double infinity = std::numeric_limits<double>::infinity();
    const double nan = std::nan("");
    PictureCapture capture(numberedPicture(4, 3));
    for (const Rect& area : {Rect{0, 0, 0, 5}, Rect{0, 0, -3, 5}, Rect{0, 0, 0.4, 5},
                             Rect{0, 0, 1e9, 5}, Rect{nan, 0, 5, 5}, Rect{0, nan, 5, 5},
                             Rect{0, 0, nan, 5}, Rect{-infinity, 0, 5, 5}, Rect::null()}) {
        EXPECT_FALSE(capture.captureBelow(area, 0)) << area.x << " " << area.width;
    }
    for (const Rect& area : {Rect{nan, 0, 5, 5}, Rect{0, infinity, 5, 5}, Rect{0, 0, infinity, 5},
                             Rect{0, 0, 5, -1}}) {
        EXPECT_FALSE(capture.captureBelow(area, 0, {8, 8}, Interpolation::low));
    }
    EXPECT_FALSE(capture.captureBelow({0, 0, 4, 3}, 0, {0, 8}, Interpolation::none));
    EXPECT_FALSE(capture.captureBelow({0, 0, 4, 3}, 0, {8, -8}, Interpolation::none));
}

} // namespace
} // namespace lumetry
