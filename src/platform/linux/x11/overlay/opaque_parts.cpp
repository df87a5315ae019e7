#include "platform/linux/x11/overlay/opaque_parts.h"

#include <algorithm>
#include <cstdint>
#include <utility>

namespace lumetry::x11 {
namespace {

bool isOpaque(std::uint32_t pixel) {
    constexpr unsigned alphaShift = 24;
    constexpr std::uint32_t leastAlpha = 128;
    return (pixel >> alphaShift) >= leastAlpha;
}

std::vector<Rect> runsOf(const Bitmap& bitmap, int row, Point origin) {
    std::vector<Rect> runs;
    for (int x = 0; x < bitmap.width; ++x) {
        if (!isOpaque(bitmap.at(x, row))) {
            continue;
        }
        const int start = x;
        while (x < bitmap.width && isOpaque(bitmap.at(x, row))) {
            ++x;
        }
        runs.push_back({origin.x + start, origin.y + row, static_cast<double>(x - start), 1});
    }
    return runs;
}

} // namespace

std::vector<Rect> opaqueParts(const Bitmap& bitmap, Point origin) {
    std::vector<Rect> parts;
    std::vector<Rect> open; // those that reach down to the row before
    for (int row = 0; row < bitmap.height; ++row) {
        std::vector<Rect> runs = runsOf(bitmap, row, origin);
        for (Rect& run : runs) {
            const auto above = std::ranges::find_if(
                open, [&](const Rect& part) { return part.x == run.x && part.width == run.width; });
            if (above != open.end()) {
                run.y = above->y;
                run.height = above->height + 1;
                open.erase(above);
            }
        }
        parts.insert(parts.end(), open.begin(), open.end());
        open = std::move(runs);
    }
    parts.insert(parts.end(), open.begin(), open.end());
    return parts;
}

} // namespace lumetry::x11
