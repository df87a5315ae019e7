#include "platform/linux/x11/overlay/pixels.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

namespace lumetry::x11 {
namespace {

using testing::ElementsAre;

Bitmap drawn(const std::vector<std::string_view>& rows) {
    Bitmap bitmap(static_cast<int>(rows.front().size()), static_cast<int>(rows.size()));
    std::size_t i = 0;
    for (const auto row : rows) {
        for (const char one : row) {
            bitmap.pixels[i++] = one == '#' ? 0x80000000 : 0x7F000000;
        }
    }
    return bitmap;
}

TEST(OpaqueParts, AreFoundExactly) {
    const std::vector<std::vector<std::string_view>> pictures = {
        {"....", "....", "...."},         {"####", "####"},
        {".##.", "####", "####", ".##."}, {"#..#", "#..#", "....", "####"},
        {"#.#.#", ".#.#.", "#.#.#"},      {"##..", "##..", "####", "..##", "#.##"},
    };
    for (const auto& rows : pictures) {
        const Bitmap bitmap = drawn(rows);
        const auto parts = opaqueParts(bitmap, {100, 50});
        for (int y = 0; y < bitmap.height; ++y) {
            for (int x = 0; x < bitmap.width; ++x) {
                const IntPoint point = {100 + x, 50 + y};
                const auto holding =
                    std::count_if(parts.begin(), parts.end(),
                                  [&](const IntRect& part) { return part.contains(point); });
                const auto row = rows[static_cast<std::size_t>(y)];
                EXPECT_EQ(holding, row[static_cast<std::size_t>(x)] == '#' ? 1 : 0)
                    << rows.front() << ' ' << x << ' ' << y;
            }
        }
    }
    EXPECT_THAT(opaqueParts(drawn({"####", "####"}), {}), ElementsAre(IntRect{0, 0, 4, 2}));
}

PixelFormat format(unsigned bitsPerPixel, std::uint32_t red, std::uint32_t green,
                   std::uint32_t blue, bool alpha, bool bigEndian) {
    PixelFormat one;
    one.bitsPerPixel = bitsPerPixel;
    one.scanlinePad = 32;
    one.redMask = red;
    one.greenMask = green;
    one.blueMask = blue;
    one.hasAlpha = alpha;
    one.mostSignificantByteFirst = bigEndian;
    return one;
}

TEST(PixelFormat, PacksForTheServer) {
    Bitmap bitmap(1, 2);
    bitmap.pixels = {0x11111111, 0xC0806020};
    struct PackingCase {
        const char* name;
        PixelFormat format;
        std::vector<std::uint8_t> bytes; ///< of the second row
    };
    const std::vector<PackingCase> cases = {
        {"translucent", format(32, 0xFF0000, 0xFF00, 0xFF, true, false), {0x20, 0x60, 0x80, 0xC0}},
        {"another byte order",
         format(32, 0xFF0000, 0xFF00, 0xFF, true, true),
         {0xC0, 0x80, 0x60, 0x20}},
        {"blue first", format(32, 0xFF, 0xFF00, 0xFF0000, false, false), {0x80, 0x60, 0x20, 0}},
        {"three bytes", format(24, 0xFF0000, 0xFF00, 0xFF, false, false), {0x20, 0x60, 0x80, 0}},
        {"5-6-5", format(16, 0xF800, 0x7E0, 0x1F, false, false), {0x04, 0x83, 0, 0}},
        {"ten bits",
         format(32, 0x3FF00000, 0xFFC00, 0x3FF, false, false),
         {0x80, 0x04, 0x26, 0x20}},
    };
    for (const auto& one : cases) {
        EXPECT_EQ(bytesPerRow(one.format, 1), 4U) << one.name;
        EXPECT_EQ(packed(one.format, bitmap, 1, 1), one.bytes) << one.name;
        EXPECT_EQ(packed(one.format, bitmap, 0, 2).size(), 8U) << one.name;
    }
}

} // namespace
} // namespace lumetry::x11
