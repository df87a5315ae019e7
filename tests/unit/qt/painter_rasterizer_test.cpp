#include "platform/qt/painter_rasterizer.h"

#include <QGuiApplication>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <span>
#include <string>

namespace lumetry {
namespace {

TEST(PainterRasterizer, DrawsTextWithinItsReachAndTheSameInParts) {
    int argc = 1;
    std::string name = "test";
    std::array<char*, 2> argv = {name.data(), nullptr};
    const QGuiApplication application(argc, argv.data());
    const PainterRasterizer painter;
    const auto drawn = [&](const DisplayList& list, const Rect& area) {
        return painter.rasterize(list, area, Edges::smooth);
    };
    for (const double size : {11.5, 12.5, 40.0}) {
        RecordingCanvas canvas(painter);
        canvas.drawText("\u01FA\u1EA8g|\u0E0D\u0E39", {40.5, 60.5},
                        {FontFamily::monospacedSystem, size, FontWeight::medium}, white);
        const DisplayList list = canvas.take();
        const Rect reach = coverage(list.front());
        const Bitmap whole = drawn(list, {0, 0, 256, 160});
        for (int i = 0; i < 256 * 160; ++i) {
            const int row = i / 256;
            const Point place = {i % 256 + 0.5, 159.5 - row};
            const auto first = whole.pixels.begin() + i;
            ASSERT_TRUE(reach.contains(place) || *first == 0) << size << " " << i;
            if (i % 16 == 0) {
                const Bitmap part = drawn(list, {place.x - 0.5, place.y - 0.5, 16, 1});
                ASSERT_TRUE(std::ranges::equal(part.pixels, std::span(first, 16)))
                    << size << " " << i;
            }
        }
    }
}

} // namespace
} // namespace lumetry
