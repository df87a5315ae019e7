#include "platform/scaled_canvas.h"

#include "platform/display_list.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <variant>

namespace lumetry {
namespace {

/// A letter is half as wide as its font is large.
class PlainMetrics final : public TextMetrics {
public:
    [[nodiscard]] Size measure(std::string_view text, const Font& font) const override {
        return {static_cast<double>(text.size()) * font.size / 2, font.size};
    }
};

bool isWhole(double pixels) {
    return pixels == std::round(pixels);
}

/// What becomes of one command at that scale.
template<class Command, class Draw>
Command drawn(double scale, Draw draw) {
    const PlainMetrics metrics;
    RecordingCanvas pixels(metrics);
    ScaledCanvas points(pixels, scale);
    draw(points);
    return std::get<Command>(pixels.displayList().at(0));
}

TEST(ScaledCanvas, PutsLinesOnWholePixels) {
    for (const double scale : {1.25, 1.5, 1.75, 2.0, 3.0}) {
        SCOPED_TRACE(scale);
        for (const double lineWidth : {0.5, 1.0, 1.5}) {
            SCOPED_TRACE(lineWidth);
            const Rect rect = {40.8, 21.6, 100, 30.4};
            const auto outline = drawn<StrokeRoundedRect>(scale, [&](Canvas& canvas) {
                canvas.strokeRoundedRect(rect, 4, white, lineWidth);
            });
            EXPECT_EQ(outline.lineWidth, std::max(std::round(lineWidth * scale), 1.0));
            const double half = outline.lineWidth / 2;
            const Rect outer = inset(outline.rect, -half, -half);
            EXPECT_TRUE(isWhole(outer.minX()) && isWhole(outer.maxX()));
            EXPECT_TRUE(isWhole(outer.minY()) && isWhole(outer.maxY()));
            EXPECT_NEAR(outline.rect.midX(), rect.midX() * scale, 0.5);
            EXPECT_NEAR(outline.rect.midY(), rect.midY() * scale, 0.5);
            const auto line = drawn<StrokeLine>(scale, [&](Canvas& canvas) {
                canvas.strokeLine({1.3, 5.1}, {9, 5.1}, white, lineWidth, {});
            });
            EXPECT_TRUE(isWhole(line.a.y - line.lineWidth / 2));
            EXPECT_EQ(line.a.y, line.b.y);
        }
        // A rim of less than a point lies within what it runs around, the same on all sides.
        const Rect chip = {10.4, 7.2, 12, 12};
        const auto fill = drawn<FillRoundedRect>(
            scale, [&](Canvas& canvas) { canvas.fillRoundedRect(chip, 3, white); });
        const auto rim = drawn<StrokeRoundedRect>(
            scale, [&](Canvas& canvas) { canvas.strokeRoundedRect(chip, 3, white, 0.5); });
        EXPECT_EQ(inset(rim.rect, -rim.lineWidth / 2, -rim.lineWidth / 2), fill.rect);
        const auto handle = drawn<FillEllipse>(scale, [&](Canvas& canvas) {
            canvas.fillEllipse({3.3, 4.9, 7, 7}, white);
        });
        EXPECT_EQ(handle.rect.width, handle.rect.height);
        EXPECT_TRUE(isWhole(handle.rect.x) && isWhole(handle.rect.width));
    }
}

TEST(ScaledCanvas, SetsTextAsLargeAsItIsMeasured) {
    const Font font = {FontFamily::system, 11, FontWeight::bold};
    const auto text = drawn<DrawText>(1.5, [&](Canvas& canvas) {
        EXPECT_EQ(canvas.measure("esc", font), (Size{16.5, 11}));
        canvas.drawText("esc", {10, 20}, font, white);
    });
    EXPECT_EQ(text.font, (Font{FontFamily::system, 16.5, FontWeight::bold}));
    EXPECT_EQ(text.lineBox, (Rect{15, 30, 24.75, 16.5}));
}

} // namespace
} // namespace lumetry
