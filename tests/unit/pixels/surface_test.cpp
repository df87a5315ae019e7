#include "pixels/surface.h"

#include "pixels/color_sample.h"
#include "screen_picture.h"
#include "support/pictures/pictures.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <limits>
#include <ostream>

namespace lumetry {

std::ostream& operator<<(std::ostream& out, const Color& color) {
    return out << color.red * 255 << " " << color.green * 255 << " " << color.blue * 255;
}

namespace {

constexpr std::uint32_t paper = 0xFFFFFF;

Color colorOf(std::uint32_t rgb) {
    return opaqueColor(pixelColor(rgb));
}

SurfaceInfo surfaceOf(const Bitmap& picture) {
    return analyzeSurfaceIn(
        picture, {static_cast<double>(picture.width), static_cast<double>(picture.height)}, 1);
}

/// A surface with marks along the diagonals from its corners inwards.
struct Corners {
    int width;
    int height;
    std::array<int, 4> marks; ///< from the top left, top right, bottom left and bottom right
    int markSide = 1;
    std::uint32_t mark = 0;
    std::uint32_t fill = paper;
};

Bitmap pictureOf(const Corners& corners) {
    const auto& [width, height, marks, side, mark, fill] = corners;
    Bitmap picture = evenBitmap(width, height, fill);
    for (std::size_t corner = 0; corner < marks.size(); ++corner) {
        for (int i = 0; i < marks[corner]; ++i) {
            const int x = corner % 2 == 0 ? i * side : width - (i + 1) * side;
            const int y = corner < 2 ? i * side : height - (i + 1) * side;
            fillRect(picture, {x, y, side, side}, mark);
        }
    }
    return picture;
}

TEST(SurfaceRadius, IsTheMedianOfCornersThatAgree) {
    struct Case {
        const char* name;
        int width;
        int height;
        std::array<int, 4> marks;
        std::optional<int> radius;
    };
    constexpr int nothing = 15; // all of the diagonal of 30
    for (const auto& [name, width, height, marks, radius] : {
             Case{"alike", 30, 30, {4, 4, 4, 4}, 14},
             Case{"rounder than the surface is high", 30, 30, {5, 5, 5, 5}, std::nullopt},
             Case{"as round as a little wider", 31, 31, {5, 5, 5, 5}, 17},
             Case{"the shorter side counts", 300, 30, {5, 5, 5, 5}, std::nullopt},
             Case{"square", 30, 30, {0, 0, 0, 0}, std::nullopt},
             Case{"one step", 30, 30, {1, 1, 1, 1}, 3},
             Case{"upper one of two in the middle", 30, 30, {0, 1, 0, 1}, 3},
             Case{"close", 40, 40, {4, 5, 6, 5}, 17},
             Case{"apart by 5/9", 60, 60, {9, 9, 7, 12}, 31},
             Case{"apart by 5/8", 60, 60, {8, 8, 5, 10}, std::nullopt},
             Case{"one odd corner", 30, 30, {1, 1, 6, 1}, std::nullopt},
             Case{"three corners", 30, 30, {4, 4, nothing, 4}, 14},
             Case{"two corners", 30, 30, {4, 4, nothing, nothing}, std::nullopt},
         }) {
        const SurfaceInfo surface = surfaceOf(pictureOf({width, height, marks}));
        EXPECT_EQ(surface.radius, radius) << name;
        EXPECT_EQ(surface.fill, colorOf(paper)) << name;
    }
}

TEST(SurfaceRadius, CornersMayDifferFromTheFillByTwentyTwo) {
    struct Case {
        std::uint32_t corner;
        std::optional<int> radius;
    };
    for (const auto& [corner, radius] : {
             Case{0x969696, std::nullopt},
             Case{0x6A6A6A, std::nullopt},
             Case{0x978080, 14},
             Case{0x806980, 14},
             Case{0x808097, 14},
         }) {
        EXPECT_EQ(surfaceOf(pictureOf({50, 50, {4, 4, 4, 4}, 1, corner, 0x808080})).radius, radius)
            << std::hex << corner;
    }
}

TEST(SurfaceFill, IsTheColourOfAtLeast45Percent) {
    for (const int filled : {44, 45}) {
        // Every other pixel has a colour of its own.
        Bitmap picture = evenBitmap(10, 10, 0x102030);
        std::uint32_t other = 0x40;
        for (int i = filled; i < 100; ++i, other += 3) {
            fillRect(picture, {i % 10, i / 10, 1, 1}, other << 16U | (0xFF - other) << 8U | 0xF0U);
        }
        EXPECT_EQ(surfaceOf(picture).fill,
                  filled < 45 ? std::nullopt : std::optional(colorOf(0x102030)));
    }
    EXPECT_EQ(surfaceOf(photoLikeBitmap(400, 300)), SurfaceInfo());
}

TEST(SurfaceInk, NeedsEnoughPixelsAndContrast) {
    struct Case {
        const char* name;
        int width;
        int height;
        int inkPixels;
        std::uint32_t ink;
        bool found;
    };
    for (const auto& [name, width, height, inkPixels, ink, found] : {
             Case{"small icon", 20, 20, 12, 0x202020, true},
             Case{"too few for it", 20, 20, 11, 0x202020, false},
             Case{"largest of the small", 599, 1, 11, 0x202020, false},
             Case{"label", 100, 30, 60, 0x202020, true},
             Case{"too few for it", 100, 30, 59, 0x202020, false},
             Case{"contrast 1.606", 100, 30, 90, 0xCCCCCC, true},
             Case{"contrast 1.590", 100, 30, 90, 0xCDCDCD, false},
             Case{"little different", 100, 30, 90, 0xDFDFDF, false},
             Case{"different in one channel", 100, 30, 90, 0xFFFF00, false},
             Case{"with contrast", 100, 30, 90, 0xFF00FF, true},
         }) {
        Bitmap picture = evenBitmap(width, height, paper);
        for (int i = 0; i < inkPixels; ++i) {
            fillRect(picture, {8 + i % 80, i / 80, 1, 1}, ink);
        }
        EXPECT_EQ(surfaceOf(picture).ink, found ? std::optional(colorOf(ink)) : std::nullopt)
            << name << " " << inkPixels << " of " << std::hex << ink;
    }
}

TEST(Surface, IsThatOfWhatExists) {
    for (const int inkPixels : {23, 24}) {
        Bitmap picture = pictureOf({100, 30, {4, 4, 0, 0}});
        fillRect(picture, {10, 10, inkPixels - 8, 1}, 0);
        for (std::size_t i = 0; i < picture.pixels.size(); ++i) {
            picture.pixels[i] = i % 100 < 40 ? picture.pixels[i] : missingPixel;
        }
        fillRect(picture, {50, 15, 4, 1}, 0);
        const SurfaceInfo surface = surfaceOf(picture);
        EXPECT_EQ(surface.fill, colorOf(paper));
        EXPECT_EQ(surface.ink, inkPixels == 24 ? std::optional(colorOf(0)) : std::nullopt)
            << "a fiftieth of 1204 pixels";
        EXPECT_EQ(surface.radius, std::nullopt) << "two corners";
    }
    EXPECT_EQ(surfaceOf(Bitmap(30, 30)), SurfaceInfo());
}

TEST(Surface, CapturesTheFrameAtMost400PixelsLong) {
    struct Case {
        Rect frame;
        PixelSize size;
        Interpolation interpolation;
    };
    using enum Interpolation;
    for (const auto& [frame, size, interpolation] : {
             Case{{5, 6, 30, 30}, {30, 30}, none},
             Case{{5, 6, 8, 400}, {8, 400}, none},
             Case{{5, 6, 100.5, 20.4}, {101, 20}, none},
             Case{{5, 6, 800, 200}, {400, 100}, low},
             Case{{5, 6, 100, 401}, {100, 400}, low},
             Case{{5, 6, 2000, 9}, {400, 8}, low},
             Case{{-1e9, 1e9, 1e12, 1e12}, {400, 400}, low},
         }) {
        ScreenPicture screen(Bitmap(1, 1));
        static_cast<void>(analyzeSurface(screen, 7, frame));
        EXPECT_EQ(screen.captures, 1);
        EXPECT_EQ(screen.area, frame);
        EXPECT_EQ(screen.size, size) << size.width << " x " << size.height;
        EXPECT_EQ(screen.interpolation, interpolation);
        EXPECT_EQ(screen.windowNumber, 7U);
    }
    constexpr double infinity = std::numeric_limits<double>::infinity();
    const double nan = std::nan("");
    for (const Rect& frame :
         {Rect{0, 0, 7.9, 100}, Rect{0, 0, 100, 7.9}, Rect{0, 0, -50, 50}, Rect{0, 0, nan, 50},
          Rect{nan, 0, 50, 50}, Rect{0, -infinity, 50, 50}, Rect{0, 0, infinity, 50}}) {
        ScreenPicture screen(evenBitmap(100, 100, paper));
        EXPECT_EQ(analyzeSurface(screen, 7, frame), SurfaceInfo());
        EXPECT_EQ(screen.captures, 0);
    }
    ScreenPicture unreadable(std::nullopt);
    EXPECT_EQ(analyzeSurface(unreadable, 7, {0, 0, 50, 50}), SurfaceInfo());
}

TEST(Surface, ScalesTheRadiusOfAReducedPicture) {
    ScreenPicture screen(pictureOf({800, 200, {7, 7, 7, 7}, 2}));
    const SurfaceInfo surface = analyzeSurface(screen, 7, {0, 0, 800, 200});
    EXPECT_EQ(surface.radius, 48) << "7 steps of 3.414 pixels, each of 2 points";
}

TEST(ColorSample, IsThePixelAtThePoint) {
    Bitmap picture = evenBitmap(20, 20, paper);
    fillRect(picture, {12, 7, 1, 1}, 0x1E90FF);
    ScreenPicture screen(std::move(picture));
    EXPECT_EQ(sampleColor(screen, 7, {12, 7}), colorOf(0x1E90FF));
    EXPECT_EQ(screen.area, (Rect{10, 5, 5, 5}));
    EXPECT_EQ(screen.windowNumber, 7U);
    EXPECT_EQ(sampleColor(screen, 7, {13, 7}), colorOf(paper));
    EXPECT_EQ(sampleColor(screen, 7, {25, 7}), std::nullopt) << "on no screen";
    ScreenPicture unreadable(std::nullopt);
    EXPECT_EQ(sampleColor(unreadable, 7, {12, 7}), std::nullopt);
}

} // namespace
} // namespace lumetry
