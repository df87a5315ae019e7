#include "pixels/pixel_box.h"

#include "screen_picture.h"
#include "support/pictures/pictures.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <ostream>
#include <vector>

namespace lumetry {

std::ostream& operator<<(std::ostream& out, const Rect& rect) {
    return out << rect.width << " x " << rect.height << " at (" << rect.x << ", " << rect.y << ")";
}

namespace {

constexpr std::uint32_t paper = 0xFFFFFF;
constexpr std::uint32_t button = 0x808080;
constexpr Point at = {1000, 500};

/// How far a box reaches from the point, in points.
struct Reach {
    double left;
    double right;
    double top;
    double bottom;
};

std::optional<Rect> rectOf(const std::optional<Reach>& reach) {
    return reach ? std::optional(Rect{at.x - reach->left, at.y - reach->top,
                                      reach->left + reach->right, reach->top + reach->bottom})
                 : std::nullopt;
}

/// A picture at one pixel a point with a button of 100 × 60 around the centre, and what is painted
/// on top of it. The centre is the pixel (150, 150).
struct Case {
    const char* name;
    std::function<void(Bitmap&)> paint;
    std::optional<Reach> expected;
};

/// The pixel of the centre itself is not counted.
constexpr Reach wholeButton = {50, 49, 30, 29};

Bitmap buttonPicture() {
    Bitmap picture = evenBitmap(300, 300, paper);
    fillRect(picture, {100, 120, 100, 60}, button);
    return picture;
}

void expectBoxes(const std::vector<Case>& cases) {
    for (const auto& [name, paint, expected] : cases) {
        Bitmap picture = buttonPicture();
        paint(picture);
        EXPECT_EQ(pixelBoxIn(picture, at), rectOf(expected)) << name;
    }
}

TEST(PixelBox, EndsAtBordersAndOtherColours) {
    expectBoxes({
        {"button", [](Bitmap&) {}, wholeButton},
        {"outlined button",
         [](Bitmap& picture) {
             fillRect(picture, {100, 120, 100, 60}, 0);
             fillRect(picture, {101, 121, 98, 58}, button);
             fillRect(picture, {0, 0, 300, 118}, button);
         },
         Reach{49, 48, 29, 28}},
        {"nothing but one colour",
         [](Bitmap& picture) {
             fillRect(picture, {0, 0, 300, 300}, button);
         },
         std::nullopt},
        {"open to the right",
         [](Bitmap& picture) {
             fillRect(picture, {150, 120, 150, 60}, button);
         },
         std::nullopt},
        {"colour at the picture's outermost pixels",
         [](Bitmap& picture) {
             fillRect(picture, {1, 120, 199, 60}, button);
         },
         std::nullopt},
        {"colour just inside of them",
         [](Bitmap& picture) {
             fillRect(picture, {2, 120, 198, 60}, button);
         },
         Reach{148, 49, 30, 29}},
        {"a dark page with a mark at the end of the screens",
         [](Bitmap& picture) {
             fillRect(picture, {100, 120, 200, 60}, 0x0A0A0A);
             fillRect(picture, {177, 148, 3, 5}, paper);
             for (std::size_t i = 0; i < picture.pixels.size(); ++i) {
                 picture.pixels[i] = i % 300 < 180 ? picture.pixels[i] : missingPixel;
             }
         },
         Reach{50, 26, 30, 29}},
    });
}

TEST(PixelBox, StepsOverMarksButNotOverLines) {
    const auto mark = [](PixelRect rect) {
        return [rect](Bitmap& picture) { fillRect(picture, rect, 0); };
    };
    expectBoxes({
        {"text",
         [](Bitmap& picture) {
             drawStrokes(picture, {110, 146, 80, 9}, 0);
         },
         wholeButton},
        {"mark of 6 pixels", mark({120, 148, 6, 5}), wholeButton},
        {"mark of 7 pixels", mark({120, 148, 7, 5}), Reach{23, 49, 30, 29}},
        {"line of 27 pixels", mark({120, 137, 1, 27}), wholeButton},
        {"line of 28 pixels", mark({120, 137, 1, 28}), Reach{29, 49, 30, 29}},
        {"line of 28 pixels, most of it on one side", mark({170, 149, 1, 28}),
         Reach{50, 19, 30, 29}},
        {"level line of 28 pixels", mark({137, 140, 28, 1}), Reach{50, 49, 9, 29}},
        {"mark at the edge joins what is outside", mark({196, 148, 4, 5}), Reach{50, 45, 30, 29}},
        {"second mark counts from behind the first",
         [](Bitmap& picture) {
             fillRect(picture, {140, 148, 5, 5}, 0);
             fillRect(picture, {132, 148, 6, 5}, 0);
             fillRect(picture, {110, 148, 7, 5}, 0);
         },
         Reach{33, 49, 30, 29}},
    });
}

TEST(PixelBox, TakesTheNearestOfThreeWalksAndNeedsTwo) {
    // The walks to the left go along the rows 145, 150 and 155.
    const auto walls = [](int upper, int middle, int lower) {
        return [=](Bitmap& picture) {
            fillRect(picture, {0, 120, 150, 60}, button);
            const auto wall = [&](int y, int height, int distance) {
                if (distance > 0) {
                    fillRect(picture, {150 - distance - 20, y, 20, height}, 0);
                }
            };
            wall(120, 28, upper);
            wall(148, 5, middle);
            wall(153, 27, lower);
        };
    };
    expectBoxes({
        {"all", walls(41, 43, 40), Reach{40, 49, 30, 29}},
        {"two", walls(41, 43, 0), Reach{41, 49, 30, 29}},
        {"another two", walls(0, 43, 41), Reach{41, 49, 30, 29}},
        {"one", walls(0, 43, 0), std::nullopt},
    });
}

TEST(PixelBox, ComparesWithTheColourAtThePoint) {
    expectBoxes({
        {"sum of the differences 56",
         [](Bitmap& picture) {
             fillRect(picture, {0, 0, 300, 300}, 0x808080 + 0x131313 - 1);
             fillRect(picture, {100, 120, 100, 60}, button);
         },
         std::nullopt},
        {"57",
         [](Bitmap& picture) {
             fillRect(picture, {0, 0, 300, 300}, 0x808080 + 0x131313);
             fillRect(picture, {100, 120, 100, 60}, button);
         },
         wholeButton},
        {"in opposite directions",
         [](Bitmap& picture) {
             fillRect(picture, {0, 0, 300, 300}, 0x936D93);
             fillRect(picture, {100, 120, 100, 60}, button);
         },
         wholeButton},
        {"a slow change adds up",
         [](Bitmap& picture) {
             for (int x = 0; x < 100; ++x) {
                 const auto shade = static_cast<std::uint32_t>(0x80 - x);
                 fillRect(picture, {150 + x, 120, 1, 60}, shade << 16U | shade << 8U | shade);
             }
         },
         Reach{50, 18, 30, 29}},
        {"the point is on a letter",
         [](Bitmap& picture) {
             fillRect(picture, {149, 146, 2, 9}, 0);
         },
         std::nullopt},
    });
}

TEST(PixelBox, MeasuresInPointsAtTwoPixelsAPoint) {
    struct SizeCase {
        PixelRect region; ///< of 600 × 600 pixels, the centre is (300, 300)
        std::optional<Reach> expected;
    };
    for (const auto& [region, expected] : {
             SizeCase{{241, 280, 120, 40}, Reach{29.5, 30, 10, 9.5}},
             SizeCase{{292, 280, 17, 40}, Reach{4, 4, 10, 9.5}},
             SizeCase{{292, 280, 16, 40}, std::nullopt},
             SizeCase{{280, 292, 40, 17}, Reach{10, 9.5, 4, 4}},
             SizeCase{{280, 292, 40, 16}, std::nullopt},
         }) {
        Bitmap picture = evenBitmap(600, 600, paper);
        fillRect(picture, region, button);
        EXPECT_EQ(pixelBoxIn(picture, at), rectOf(expected))
            << region.width << " x " << region.height;
    }
}

TEST(PixelBox, NeedsAPictureOfTwelveRows) {
    // Specks where the walks of the two rows and columns in reach end.
    for (const int side : {1, 8, 9, 10, 11, 12}) {
        Bitmap picture = evenBitmap(side, side, button);
        for (const int track : {side / 2 - 5, side / 2}) {
            for (const int end : {1, side - 2}) {
                fillRect(picture, {end, track, 1, 1}, 0);
                fillRect(picture, {track, end, 1, 1}, 0);
            }
        }
        const auto box = pixelBoxIn(picture, at);
        EXPECT_EQ(box.has_value(), side == 12) << side;
    }
    for (const auto& [width, height] : {PixelSize{12, 300}, PixelSize{300, 8}, PixelSize{8, 300}}) {
        EXPECT_EQ(pixelBoxIn(Bitmap(width, height), at), std::nullopt);
    }
}

TEST(PixelBox, ReadsTheSquareAroundThePointBelowTheWindow) {
    Bitmap picture = evenBitmap(1400, 900, paper);
    fillRect(picture, {980, 490, 50, 30}, button);
    ScreenPicture screen(std::move(picture));
    EXPECT_EQ(pixelBox(screen, 7, at), (Rect{980, 490, 49, 29}));
    EXPECT_EQ(screen.area, (Rect{850, 350, 300, 300}));
    EXPECT_EQ(screen.windowNumber, 7U);

    EXPECT_EQ(pixelBox(screen, 7, {std::nan(""), 500}), std::nullopt);
    EXPECT_EQ(pixelBox(screen, 7, {1000, 1e300}), std::nullopt);
    ScreenPicture unreadable(std::nullopt);
    EXPECT_EQ(pixelBox(unreadable, 7, at), std::nullopt);
}

} // namespace
} // namespace lumetry
