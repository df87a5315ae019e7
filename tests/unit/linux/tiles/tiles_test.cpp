#include "platform/linux/tiles/tiles.h"
#include "platform/qt/painter_rasterizer.h"
#include "support/pictures/pictures.h"

#include <QGuiApplication>
#include <gmock/gmock.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <numeric>
#include <random>
#include <vector>

namespace lumetry {
namespace {

constexpr IntSize view = {640, 480};
constexpr IntRect whole = {0, 0, view.width, view.height};

int areaOf(const std::vector<IntRect>& rects) {
    return std::accumulate(rects.begin(), rects.end(), 0, [](int sum, const IntRect& rect) {
        return sum + rect.width * rect.height;
    });
}

/// Where shapes are cut off for a tile their smoothing may differ by a shade.
constexpr int shade = 8;

/// Such a pixel may be there or not where there is nothing in between.
bool isHalfCovered(std::uint32_t pixel) {
    return std::abs(static_cast<int>(pixel >> 24) - 128) <= shade;
}

/// A picture of the whole view put together piece by piece.
class Picture {
public:
    explicit Picture(const Rasterizer& rasterizer, const DisplayList& list, Edges edges)
        : bitmap(rasterizer.rasterize(list, toRect(whole), edges)), rasterizer_(rasterizer),
          edges_(edges) {}

    void put(const TilePlan& plan, const DisplayList& list) {
        for (const IntRect& rect : plan.cleared) {
            fill(rect, 0);
        }
        for (const TilePlan::Uniform& uniform : plan.uniform) {
            const Bitmap sample = rasterizer_.rasterize(
                list, toRect({uniform.sample.x, uniform.sample.y, 1, 1}), edges_);
            for (const IntRect& rect : uniform.areas) {
                fill(rect, sample.at(0, 0));
            }
        }
        for (const TilePlan::Striped& striped : plan.striped) {
            const Bitmap sample = rasterizer_.rasterize(list, toRect(striped.sample), edges_);
            for (const IntRect& rect : striped.areas) {
                each(rect, [&](int x, int y, std::uint32_t& pixel) {
                    pixel = striped.upright ? sample.at(x, 0) : sample.at(0, y);
                });
            }
        }
        for (const IntRect& rect : plan.rasterized) {
            const Bitmap part = rasterizer_.rasterize(list, toRect(rect), edges_);
            each(rect, [&](int x, int y, std::uint32_t& pixel) { pixel = part.at(x, y); });
        }
    }

    Bitmap bitmap;

private:
    template<class Function>
    void each(const IntRect& rect, Function function) {
        const int top = flipped(rect, view.height).y;
        for (int y = 0; y < rect.height; ++y) {
            for (int x = 0; x < rect.width; ++x) {
                function(x, y,
                         bitmap.pixels[static_cast<std::size_t>(top + y) *
                                           static_cast<std::size_t>(bitmap.width) +
                                       static_cast<std::size_t>(rect.x + x)]);
            }
        }
    }
    void fill(const IntRect& rect, std::uint32_t color) {
        each(rect, [&](int, int, std::uint32_t& pixel) { pixel = color; });
    }

    const Rasterizer& rasterizer_;
    Edges edges_;
};

/// Drawings of a few commands anywhere in and around the view, at fractions of points too.
class RandomDrawings {
public:
    DisplayList next() {
        DisplayList list;
        for (int i = 0, count = pick(1, 6); i < count; ++i) {
            list.push_back(command());
        }
        return list;
    }

private:
    int pick(int low, int high) {
        return std::uniform_int_distribution<int>(low, high)(generator_);
    }
    double place(int low, int high) { return pick(4 * low, 4 * high) / 4.0; }
    Rect rect() { return {place(-50, 600), place(-50, 450), place(1, 500), place(1, 400)}; }
    Color color() { return {pick(0, 4) / 4.0, pick(0, 4) / 4.0, 1, pick(1, 10) / 10.0}; }

    DrawCommand command() {
        switch (pick(0, 5)) {
        case 0:
        case 1:
            return FillRoundedRect{rect(), place(0, 60), color()};
        case 2:
        case 3:
            return StrokeRoundedRect{rect(), place(0, 60), color(), place(1, 9)};
        case 4:
            return StrokeEllipse{rect(), color(), place(1, 4)};
        default: {
            const Point a = {place(0, 600), place(0, 400)};
            const Point b = pick(0, 1) == 0 ? Point{a.x, place(0, 400)} : Point{place(0, 600), a.y};
            return StrokeLine{a, b, color(), pick(3, 8) / 2.0, {5, 3}};
        }
        }
    }

    std::mt19937 generator_{20240229};
};

class OverlayTiles : public testing::Test {
protected:
    static void SetUpTestSuite() {
        static int count = 1;
        static std::array<char, 5> name = {"test"};
        static std::array<char*, 2> arguments = {name.data(), nullptr};
        application = std::make_unique<QGuiApplication>(count, arguments.data());
    }
    static void TearDownTestSuite() { application.reset(); }

    [[nodiscard]] const Rasterizer& rasterizer() const { return painter_; }

private:
    static inline std::unique_ptr<QGuiApplication> application;

    PainterRasterizer painter_;
};

TEST_F(OverlayTiles, MakeTheSamePictureAsDrawingItWhole) {
    RandomDrawings drawings;
    for (const Edges edges : {Edges::smooth, Edges::hard}) {
        DisplayList before;
        for (int i = 0; i < 60; ++i) {
            const DisplayList after = drawings.next();
            Picture picture(rasterizer(), before, edges);
            const TilePlan plan = planTiles(after, changedAreas(before, after), view, &before);
            const auto pieces = plan.all();
            EXPECT_LE(areaOf(pieces), view.width * view.height) << "pieces overlap";
            picture.put(plan, after);
            const Bitmap smooth = rasterizer().rasterize(after, toRect(whole), Edges::smooth);
            const Bitmap expected = rasterizer().rasterize(after, toRect(whole), edges);
            std::size_t wrong = 0;
            for (std::size_t j = 0; j < expected.pixels.size(); ++j) {
                const bool either = edges == Edges::hard && isHalfCovered(smooth.pixels[j]);
                wrong +=
                    !either && !isNear(expected.pixels[j], picture.bitmap.pixels[j], shade) ? 1 : 0;
            }
            ASSERT_EQ(wrong, 0U) << "drawing " << i;
            before = after;
        }
    }
}

TEST_F(OverlayTiles, FollowTheEdgesOfALargeElement) {
    const Rect element = {2, 2, 4000, 2000};
    const DisplayList list = {FillRoundedRect{element, 4, accentPink.withAlpha(0.07)},
                              StrokeRoundedRect{element, 4, accentPink, 1.5}};
    const std::array areas = {coverage(list[0]), coverage(list[1])};
    const TilePlan plan = planTiles(list, areas, {5120, 2880});
    // The corners alone: of straight edges one row or column is enough.
    EXPECT_LE(areaOf(plan.rasterized), 4 * 32 * 32);
    EXPECT_GE(plan.striped.size(), 4U);
    ASSERT_EQ(plan.uniform.size(), 1U);
    EXPECT_TRUE(covers(plan.uniform.front().areas, {34, 34, 3936, 1936}));
    // Neighbours are joined.
    EXPECT_LT(plan.all().size(), 30U);
}

TEST_F(OverlayTiles, LeaveOutWhatStaysTheSame) {
    const auto drawing = [](const Rect& element, double alpha) {
        return DisplayList{FillRoundedRect{element, 4, accentPink.withAlpha(alpha)},
                           StrokeRoundedRect{element, 4, accentPink, 1.5}};
    };
    const DisplayList before = drawing({100, 100, 3000, 2000}, 0.07);
    const IntSize large = {5120, 2880};
    const auto areaFor = [&](const DisplayList& after) {
        return areaOf(planTiles(after, changedAreas(before, after), large, &before).all());
    };
    // A little smaller: the inside is the same; what has become free has to be cleared.
    EXPECT_LT(areaFor(drawing({150, 150, 2900, 1900}, 0.07)), 2 * (3000 + 2000) * (50 + 3 * 16));
    // Another colour: all of it is different.
    EXPECT_GT(areaFor(drawing({100, 100, 3000, 2000}, 0.08)), 2900 * 1900);
}

TEST_F(OverlayTiles, StayInTheView) {
    const DisplayList list = {StrokeRoundedRect{{-1e9, -1e9, 2e9, 2e9}, 4, white, 2},
                              FillRoundedRect{{600, 440, 1e7, 1e7}, 4, white}};
    const std::array areas = {coverage(list[0]), coverage(list[1])};
    const auto pieces = planTiles(list, areas, view).all();
    EXPECT_EQ(areaOf(pieces), view.width * view.height);
    EXPECT_TRUE(covers(pieces, whole));
    const std::array outside = {Rect{700, 0, 10, 10}};
    EXPECT_TRUE(planTiles(list, outside, view).all().empty());
    EXPECT_TRUE(planTiles(list, {}, view).all().empty());
}

TEST(OverlayTilesCover, NeedsEveryPart) {
    const std::array pieces = {IntRect{0, 0, 10, 10}, IntRect{10, 0, 10, 20}};
    struct CoverCase {
        IntRect rect;
        bool covered;
    };
    const std::vector<CoverCase> cases = {
        {{2, 2, 15, 8}, true},   {{0, 0, 20, 10}, true}, {{0, 0, 20, 11}, false},
        {{12, 3, 4, 17}, true},  {{-1, 0, 5, 5}, false}, {{9, 9, 2, 2}, false},
        {{30, 30, 1, 1}, false},
    };
    for (const auto& one : cases) {
        EXPECT_EQ(covers(pieces, one.rect), one.covered) << one.rect.x << ' ' << one.rect.y;
    }
}

} // namespace
} // namespace lumetry
