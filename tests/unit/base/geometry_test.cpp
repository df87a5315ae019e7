#include "base/geometry.h"

#include "base/int_geometry.h"
#include "support/printing/printing.h"

#include <gtest/gtest.h>

#include <limits>
#include <optional>

namespace lumetry {
namespace {

constexpr Rect unit = {10, 20, 30, 40};

TEST(Rect, HasPartsAndSpans) {
    EXPECT_EQ(unit.origin(), (Point{10, 20}));
    EXPECT_EQ(unit.size(), (Size{30, 40}));
    EXPECT_EQ(Rect::null().size(), Size());
    EXPECT_EQ((Point{unit.midX(), unit.midY()}), (Point{25, 40}));
    EXPECT_EQ(horizontalSpan(unit), (Span{10, 40}));
    EXPECT_EQ(verticalSpan(unit).middle(), 40);
    EXPECT_EQ(gapBetween({10, 40}, {40, 50}), (Span{40, 40}));
    EXPECT_EQ(gapBetween({40, 50}, {10, 40}), (Span{40, 40}));
    EXPECT_EQ(gapBetween({10, 40}, {39, 50}), std::nullopt);
}

TEST(Rect, ContainsItsLowEdgesOnly) {
    using Case = std::pair<Point, bool>;
    for (const auto& [point, inside] : {
             Case{{10, 20}, true},
             Case{{39.99, 59.99}, true},
             Case{{40, 30}, false},
             Case{{20, 60}, false},
             Case{{9.99, 30}, false},
         }) {
        EXPECT_EQ(unit.contains(point), inside) << point;
    }
}

TEST(Rect, UniteAndIntersect) {
    struct Case {
        const char* name;
        Rect other;
        Rect united;
        Rect shared;
    };
    for (const auto& [name, other, united, shared] : {
             Case{"overlapping", {20, 0, 50, 30}, {10, 0, 60, 60}, {20, 20, 20, 10}},
             Case{"inside", {15, 25, 5, 5}, unit, {15, 25, 5, 5}},
             Case{"apart", {-20, -20, 5, 5}, {-20, -20, 60, 80}, Rect::null()},
             Case{"touching", {40, 20, 10, 40}, {10, 20, 40, 40}, Rect::null()},
             Case{"null", Rect::null(), unit, Rect::null()},
             Case{"a point, which still has a place", {0, 0, 0, 0}, {0, 0, 40, 60}, Rect::null()},
         }) {
        SCOPED_TRACE(name);
        EXPECT_EQ(unite(unit, other), united);
        EXPECT_EQ(unite(other, unit), united);
        EXPECT_EQ(intersect(unit, other), shared);
        EXPECT_EQ(intersect(other, unit), shared);
    }
}

TEST(Rect, InsetUntilNothingIsLeft) {
    EXPECT_EQ(inset(unit, 1, 2), (Rect{11, 22, 28, 36}));
    EXPECT_EQ(inset(unit, 15, 20), (Rect{25, 40, 0, 0}));
    EXPECT_TRUE(inset(unit, 15.5, 0).isNull());
    EXPECT_TRUE(inset(Rect::null(), -5, -5).isNull());
    EXPECT_FALSE((Rect{Rect::null().x, 0, 1, 1}).isNull());
}

TEST(Flip, TurnsTheRectangleNotOnlyItsOrigin) {
    EXPECT_EQ(flipped(Point{100, 300}, 900), (Point{100, 600}));
    EXPECT_EQ(flipped(unit, 900), (Rect{10, 840, 30, 40}));
}

TEST(IntRect, IsTheSameInWholeNumbersAsFarAsTheyGo) {
    constexpr IntRect rect = {10, 20, 30, 40};
    EXPECT_EQ(rect.size(), (IntSize{30, 40}));
    EXPECT_EQ(toRect(rect), unit);
    EXPECT_EQ(flipped(rect, 900), (IntRect{10, 840, 30, 40}));
    for (const IntPoint inside : {IntPoint{10, 20}, {39, 59}}) {
        EXPECT_TRUE(rect.contains(inside));
    }
    for (const IntPoint outside : {IntPoint{9, 30}, {40, 30}, {20, 19}, {20, 60}}) {
        EXPECT_FALSE(rect.contains(outside)) << outside.x << "," << outside.y;
    }
    constexpr std::int32_t least = std::numeric_limits<std::int32_t>::min();
    constexpr std::int32_t most = std::numeric_limits<std::int32_t>::max();
    struct Case {
        IntRect other;
        IntRect united;
        IntRect shared;
    };
    for (const auto& [other, united, shared] : {
             Case{{20, 0, 50, 30}, {10, 0, 60, 60}, {20, 20, 20, 10}},
             Case{{15, 25, 5, 6}, rect, {15, 25, 5, 6}},
             Case{{40, 20, 10, 40}, {10, 20, 40, 40}, {40, 20, 0, 0}},
             Case{{10, 60, 30, 5}, {10, 20, 30, 45}, {10, 60, 0, 0}},
             Case{{least, least, 5, 6}, {least, least, most, most}, {10, 20, 0, 0}},
         }) {
        EXPECT_EQ(unite(rect, other), united) << other.x;
        EXPECT_EQ(intersect(other, rect), shared) << other.x;
        EXPECT_EQ(shared.isEmpty(), shared.size() == IntSize());
    }
}

} // namespace
} // namespace lumetry
